# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# sandbox_test.sh - the simulated device: private files, visible files, exit statuses and its end.
# Root runs it a second time as an ordinary user, from a copy that this user can read.
# shellcheck shell=bash disable=SC2016
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit
needs_sandbox

this_file=$(realpath "$0")
user=$(id -u)
mark=velk-sandbox-test-$$-$user # a unique file name
seconds=$((100000 + $$))        # unique argument of `sleep`, to find its process

# --- functions of this file ---

# Runs a shell line on a device.
on_device_sh() { on_device sh -c "$1"; }

# Runs a shell line in a private mount namespace.
on_other_mounts() {
    if [ "$user" = 0 ]; then
        run unshare --mount sh -c "$1" sh "${@:2}"
    else
        run unshare --map-root-user --mount sh -c "$1" sh "${@:2}"
    fi
}

sleepers() { pgrep -fx "sleep $seconds"; }
has_sleepers() { sleepers >/dev/null; }
# shellcheck disable=SC2317 # called by name
has_no_sleepers() { ! has_sleepers; }
ends_all_processes() {
    wait_until has_no_sleepers
    check 'processes left' '' "$(sleepers)"
    sleepers | xargs -r kill
}

# Prints name, type and link target of each entry of a folder.
entries() { find "$1/" -maxdepth 1 ! -name dhclient-script -printf '%f %y %l\n' 2>&1 | sort; }

# Removes tools that the device may replace.
without_tools() { grep -vE '^(ethtool|ifconfig|route|sudo) '; }

# Prints the state of everything on the machine that the device could have changed.
machine_state() {
    local folder
    for folder in /etc /etc/network /usr/sbin /usr/local/share /var /var/lib /var/cron /var/libvelk \
        /var/log /proc/bus; do
        printf '%s: ' "$folder"
        entries "$folder" | cksum
    done
    stat -L -c '%n %i %a %u %s %Y' /etc /etc/hosts /etc/passwd /etc/network /etc/network/interfaces \
        /etc/dhclient.conf /etc/resolv.dnsmasq.conf /sbin /sbin/dhclient-script /tmp /run /dev/shm \
        /var/tmp 2>&1 | sed -E 's,^(/tmp|/run|/dev/shm|/var/tmp) (.*) [0-9]+ [0-9]+$,\1 \2,'
    cksum /etc/hosts /etc/passwd /etc/dhclient.conf /sbin/dhclient-script 2>&1
    cat /proc/self/mounts
    hostname
}

# Prints 1 if capability 25, CAP_SYS_TIME, is in a line of /proc/PID/status, else 0.
clock_bit() { echo $((0x${1##*:?} >> 25 & 1)); }

# Runs a program at a terminal and types lines to it, half a second apart.
at_terminal() { # at_terminal PROGRAM LINE...
    local program=$1 line
    shift
    lib_command="$program at a terminal"
    error=
    output=$(for line; do
        sleep 0.5
        printf '%b' "$line"
    done | timeout 60 script -qec "$program" /dev/null 2>&1)
    status=$?
}

machine_before=$(machine_state)

# --- files and folders ---

while read -r mode file; do
    it "has $file"
    on_device stat -c '%a %F' "$file"
    output_is "$mode regular file"
    status_is 0
done <<'END'
644 /etc/resolv.dnsmasq.conf
644 /etc/network/interfaces
644 /etc/dhclient.conf
644 /etc/dhclient-exit-hooks
755 /sbin/dhclient-script
600 /var/cron/tabs/root
644 /var/libvelk/libvelk
644 /usr/local/share/etc/snmp/snmpd.conf
644 /usr/local/share/apps/wlan/supportlist.ini
644 /proc/bus/usb/devices
END

while read -r mode folder; do
    it "has the folder $folder"
    on_device stat -c '%a %F' "$folder"
    output_is "$mode directory"
done <<'END'
1777 /tmp
1777 /var/tmp
1777 /dev/shm
755 /run
1777 /run/lock
755 /run/network
755 /var/lib/dhcp
755 /var/log/syslog
755 /var/libvelk
END

it 'sets the modes of files independently of the umask'
run sh -c 'umask 077; velk-sandbox --quiet -- stat -c %a /etc/network /etc/dhclient.conf /run/lock'
output_is '755
644
1777'

it 'has no network hooks and no interfaces of the machine'
on_device_sh 'cd /etc/network && find . -type f'
output_is ./interfaces

it 'has scripts that are valid for a shell'
on_device_sh 'sh -n /sbin/dhclient-script && sh -n /etc/dhclient-exit-hooks'
status_is 0
error_is ''

it 'shows the other files of a folder that contains files of the device'
on_device_sh "$(declare -f entries without_tools); entries /usr/sbin | without_tools
    cksum </etc/passwd"
output_is "$(
    entries /usr/sbin | without_tools
    cksum </etc/passwd
)"
check 'entries of /usr/sbin' many "$([ "$(echo "$output" | wc -l)" -gt 20 ] && echo many)"

it 'takes its files from the folder of --rootfs'
mkdir -p "$lib_folder/files/etc/network/deeper"
echo 'of my own' >"$lib_folder/files/etc/network/deeper/file"
ln -s deeper/file "$lib_folder/files/etc/network/link"
run velk-sandbox --quiet --rootfs "$lib_folder/files" -- \
    sh -c 'cat /etc/network/link; ls /etc/network/interfaces /etc/dhclient.conf; touch /sbin/new'
output_is 'of my own'
error_has /etc/network/interfaces
error_has /etc/dhclient.conf

# --- private files, network and processes ---

it 'can edit its files in place'
on_device_sh 'cd /etc; before=$(stat -c "%i %a %u" dhclient.conf)
    sed s/eth0/ethX/ dhclient.conf >/var/tmp/dhclient.conf
    cat /var/tmp/dhclient.conf >dhclient.conf && rm /var/tmp/dhclient.conf
    [ "$before" = "$(stat -c "%i %a %u" dhclient.conf)" ] && grep -c ethX dhclient.conf'
output_is 1
error_is ''

it 'can make, rename and remove files'
on_device_sh 'for folder in /etc /sbin /etc/network /var/cron/tabs /var/libvelk /proc/bus/usb \
        /usr/local/share/etc/snmp /usr/local/share/apps/wlan /var/lib/dhcp /var/log/syslog; do
        cd $folder && echo text >new && mv new newer && rm newer || echo "not in $folder"
    done
    cd /sbin && mv dhclient-script /etc/dhclient-script && rm /etc/dhclient-script && echo moved'
output_is moved
error_is ''

it 'writes no file to the machine'
on_device_sh "for folder in /tmp /var/tmp /dev/shm /run /etc /sbin /var /var/lib /var/log /var/libvelk
    do echo text >\$folder/$mark || exit; done; hostname $mark; ls /tmp/$mark"
output_is "/tmp/$mark"
error_is ''
for folder in /tmp /var/tmp /dev/shm /run /etc /sbin /var /var/lib /var/log /var/libvelk; do
    check "$folder/$mark outside" absent "$([ -e "$folder/$mark" ] && echo present || echo absent)"
done
on_device_sh "ls /etc/$mark"
status_is 2

it 'starts with empty private folders'
on_device find /var/tmp /dev/shm /run -mindepth 1 ! -path '/run/velk-sandbox*' ! -path /run/lock \
    ! -path /run/network ! -path "/run/network/ifstate*"
output_is ''

# Each attempt would be harmless if it succeeded.
it 'cannot write to the rest of the machine'
on_device_sh "touch /usr/$mark"
status_is 1
error_has 'Read-only file system'
if [ "$user" = 0 ]; then
    on_device_sh ': >>/etc/passwd'
    status_is 2
    error_has 'Read-only file system'
    for setting in /proc/sys/kernel/panic /sys/kernel/mm/ksm/run; do
        [ -e "$setting" ] || continue
        on_device_sh "value=\$(cat $setting); echo \$value >$setting"
        status_is 2
        error_has 'Read-only file system'
    done
fi

it 'can write the settings of its own network'
on_device_sh 'echo 1 >/proc/sys/net/ipv4/ip_forward && cat /proc/sys/net/ipv4/ip_forward'
output_is 1

it 'cannot set the clock'
on_device grep ^Cap /proc/self/status
check 'sets shown' 5 "$(echo "$output" | wc -l)"
while read -r set; do
    check "clock in $set" 0 "$(clock_bit "$set")"
done <<<"$output"

if setpriv --inh-caps=+sys_time --ambient-caps=+sys_time true 2>/dev/null; then
    it 'cannot set the clock even with an inherited right to do so'
    run setpriv --inh-caps=+sys_time --ambient-caps=+sys_time \
        velk-sandbox --quiet -- grep ^Cap /proc/self/status
    while read -r set; do
        check "clock in $set" 0 "$(clock_bit "$set")"
    done <<<"$output"
fi

it 'has private namespaces'
for namespace in ipc mnt net pid uts; do
    on_device readlink "/proc/self/ns/$namespace"
    has namespace "$namespace:" "$output"
    check "$namespace namespace of the machine" no \
        "$([ "$output" = "$(readlink "/proc/self/ns/$namespace")" ] && echo yes || echo no)"
done

it 'has a private network with lo up'
on_device_sh 'ls /sys/class/net; sed -n "3,\$s/ *\(.*\):.*/\1/p" /proc/net/dev | sort
    cat /sys/class/net/lo/flags'
output_is 'eth0
eth1
lo
eth0
eth1
lo
0x9'

it 'has private processes'
on_device_sh 'cd /proc && for process in [0-9]*; do
        [ $process = $$ ] && echo "this one" || cat $process/comm
    done'
output_is "velk-sandbox
velk-hardware$([ -x "$VELK_BUILD/wland" ] && printf '\nwland')
this one"

it 'has private device nodes only: no disk and no log of the machine'
dev_is_private '' ''
on_device_sh 'stat -c "%F" /dev/* /dev/*/* | sort -u'
output_is 'character special file
directory
symbolic link'
on_device_sh 'echo text >/dev/null && head -c 3 /dev/zero | wc -c && echo text | cat /dev/fd/0'
output_is '3
text'
error_is ''
on_device_sh 'mode=$(stat -c %a /dev/null) && chmod "$mode" /dev/null'
status_is 1
error_has "changing permissions of '/dev/null': Read-only file system"

it 'does not log to the machine'
mkdir "$lib_folder/dev"
on_other_mounts 'cd "$1" && mkdir shm && : >log && : >null &&
    mount --bind /dev/null null && mount --rbind . /dev && cd / &&
    velk-sandbox --quiet -- ls /dev/log /dev/kmsg /dev/null' "$lib_folder/dev"
output_is /dev/null
error_is "ls: cannot access '/dev/log': No such file or directory
ls: cannot access '/dev/kmsg': No such file or directory"

it 'limits the size of its private folders'
on_device_sh 'sed -nE "s/^velk ([^ ]*) tmpfs .*(,size=[^,]*,nr_inodes=[^, ]*).*/\1\2/p" /proc/mounts'
for folder in /dev /dev/shm /etc /run /tmp /usr/sbin /var /var/log /var/tmp; do
    output_has "$folder,size=65536k,nr_inodes=16384"
done
check 'file systems without these limits' '' \
    "$(echo "$output" | grep -v ',size=65536k,nr_inodes=16384$')"
on_device_sh 'grep -c "^velk [^ ]* tmpfs .*" /proc/mounts'
check 'file systems in memory' yes "$([ "$output" -ge 9 ] && echo yes)"
on_device_sh 'head -c 70000000 /dev/zero >/var/log/syslog/loop; stat -c %s /var/log/syslog/loop'
output_is 67108864
error_has 'No space left on device'

it 'is named velk'
on_device hostname
output_is velk

# --- folders that stay visible ---

it 'runs from a checkout under /tmp, which stays visible and read-only'
mkdir "$lib_folder/checkout"
cp -R --preserve=mode "$VELK_BUILD/velk-sandbox" "$VELK_BUILD/rootfs" "$VELK_BUILD/stand-ins" "$lib_folder/checkout"
cd "$lib_folder/checkout" || exit
echo mine >file
run ./velk-sandbox --quiet -- sh -c \
    'pwd; cat file; command -v velk-sandbox; echo "$PATH" | cut -d : -f 1,2; ls -A /tmp; touch new'
output_is "$lib_folder/checkout
mine
$lib_folder/checkout/velk-sandbox
/run/velk-sandbox/bin:$lib_folder/checkout
${lib_folder#/tmp/}"
error_has 'Read-only file system'

it 'keeps the folders of --writable writable'
mkdir "$lib_folder/checkout/a" "$lib_folder/b"
run ./velk-sandbox --quiet --writable a --writable "$lib_folder/b" -- \
    sh -c "touch a/new '$lib_folder/b/new' && touch new"
error_has 'Read-only file system'
check 'files outside' 'a/new ../b/new' "$(echo a/n* ../b/n*)"

it 'keeps the current folder writable if a parent folder is'
run ./velk-sandbox --quiet --writable "$lib_folder" -- sh -c 'touch here'
status_is 0
check 'file outside' here "$(echo her*)"

it 'can run a second device inside the device'
run ./velk-sandbox --quiet -- velk-sandbox --quiet -- sh -c 'cat file; stat -c %a /etc/dhclient.conf'
output_is 'mine
644'

it 'starts even if the machine removes a file in the meantime'
mkfifo "$lib_folder/started" "$lib_folder/removed"
on_other_mounts 'mount -t tmpfs none /var/log && echo text >/var/log/file && echo text >/var/log/more
    exec 8<>"$1" 9<>"$2"
    (read -r _ <&8; rm /var/log/file; echo >&9) &
    velk-sandbox --quiet -- sh -c "echo >&8; read -r _ <&9; velk-sandbox --quiet -- ls /var/log"
    ' "$lib_folder/started" "$lib_folder/removed"
output_is 'more
syslog'
error_is ''

it 'starts in a private folder if the current folder is replaced by one'
cd /tmp || exit
on_device sh -c 'pwd; ls -A . | grep -v "^tmp\."; touch new && ls new'
has 'standard output' '/tmp' "$output"
has 'standard output' 'new' "$output"
cd "$lib_folder" || exit

it 'can be started in any folder'
cd / || exit
on_device readlink /proc/self/cwd
output_is /
mkdir "$lib_folder/gone"
cd "$lib_folder/gone" || exit
rmdir "$lib_folder/gone"
on_device readlink /proc/self/cwd
output_is /
cd "$lib_folder" || exit

it 'finds the tools in the sbin folders'
run env PATH="$VELK_BUILD:/usr/bin:/bin" velk-sandbox --quiet -- sh -c 'echo "$PATH"'
output_is "/run/velk-sandbox/bin:$VELK_BUILD:$VELK_BUILD:/usr/bin:/bin:/usr/local/sbin:/usr/sbin:/sbin"

# --- exit statuses and messages ---

it 'returns the exit status of the command'
on_device true
status_is 0
on_device_sh 'exit 42'
status_is 42
on_device_sh 'kill -TERM $$'
status_is 143
on_device_sh 'kill -KILL $$'
status_is 137

it 'returns the exit status even if started with SIGCHLD ignored'
run env --ignore-signal=CHLD velk-sandbox --quiet -- sh -c 'exit 9'
status_is 9

it 'passes arguments to the command unchanged'
on_device printf '%s|' -- --quiet 'a b' ''
output_is '--|--quiet|a b||'

it 'reports a command that is not found or cannot be run'
run env PATH="$VELK_BUILD:/usr/bin:/bin" velk-sandbox --quiet -- "$mark"
status_is 127
error_is "velk-sandbox: $mark: No such file or directory"
on_device /etc/passwd
status_is 126
error_is 'velk-sandbox: /etc/passwd: Permission denied'

it 'takes a command without --, with its options unchanged'
run velk-sandbox --quiet printf '%s|' --quiet --name x -- enter 'a b' ''
output_is '--quiet|--name|x|--|enter|a b||'
run velk-sandbox --quiet --writable "$lib_folder" --name "$mark" sh -c 'cat /run/velk-sandbox/name; exit 5'
output_is "$mark"
status_is 5
run velk-sandbox "--name=$mark" velkctl get --json eth0.method
output_has '"value": "static"'
error_is ''

it 'takes the first -- as the start of the command, but none of its later words'
run velk-sandbox --quiet -- list --help
status_is 127
error_is 'velk-sandbox: list: No such file or directory'
run velk-sandbox --quiet sh -c 'echo "$@"' sh -- list
output_is '-- list'

it 'suggests a subcommand if a program of a similar name is not found'
for words in 'cabel out cable' 'watc watch' 'lst list' 'adaptre in adapter' 'rout out router'; do
    # shellcheck disable=SC2086
    run velk-sandbox ${words% *}
    status_is 127
    error_is "velk-sandbox: ${words%% *}: No such file or directory; did you mean ${words##* }?
  fix: give a program that the device has, or see velk-sandbox --help"
done

it 'suggests none for a word that is like none of them, a path, or a word after --'
run velk-sandbox mumble
status_is 127
error_is 'velk-sandbox: mumble: No such file or directory
  fix: give a program that the device has, or see velk-sandbox --help'
run velk-sandbox /cable
status_is 127
error_is 'velk-sandbox: /cable: No such file or directory'
run velk-sandbox -- cabel
status_is 127
error_is 'velk-sandbox: cabel: No such file or directory'

it 'explains that a program is hidden by a private folder'
cd / || exit
mkdir "$lib_folder/program"
cp /bin/true "$lib_folder/program/mine"
run velk-sandbox "$lib_folder/program/mine"
status_is 127
error_is "velk-sandbox: $lib_folder/program/mine: No such file or directory
  the device has a /tmp of its own
  fix: start the device in the program's folder, or with
    --writable $lib_folder/program"
run velk-sandbox --writable "$lib_folder/program" "$lib_folder/program/mine"
status_is 0
error_is ''
run sh -c 'cd "$1" && exec velk-sandbox ./mine' sh "$lib_folder/program"
status_is 0
run velk-sandbox /dev/../var/tmp/mine
status_is 127
error_is 'velk-sandbox: /dev/../var/tmp/mine: No such file or directory
  the device has a /var/tmp of its own
  fix: move the program to a folder that the device shares, such as your home'
run velk-sandbox /usr/bin/mine
status_is 127
error_is 'velk-sandbox: /usr/bin/mine: No such file or directory'
cd "$lib_folder" || exit

it 'gives no such explanation for a program that lacks its interpreter'
printf '#!/nonexistent\n' >"$lib_folder/program/script"
chmod +x "$lib_folder/program/script"
run velk-sandbox --writable "$lib_folder/program" "$lib_folder/program/script"
status_is 127
error_is "velk-sandbox: $lib_folder/program/script: No such file or directory"

it 'refuses arguments that are not valid, and names the help'
while IFS='|' read -r words message help; do
    # shellcheck disable=SC2086
    run velk-sandbox $words
    status_is 2
    output_is ''
    error_is "velk-sandbox: $message
  fix: see velk-sandbox $help"
done <<END
--bogus|unknown option '--bogus'|--help
--bogus true|unknown option '--bogus'|--help
--rael true|unknown option '--rael'; did you mean --real?|--help
--writable|--writable: DIR is missing|--help
--name|--name: NAME is missing|--help
--name a --name b true|--name is given more than once|--help
--real=x true|--real takes no value|--help
--no-router true|--no-router requires --real|--help
cable in out|unexpected argument 'out'|cable --help
router in -- out|unexpected argument 'out'|router --help
list $mark|unexpected argument '$mark'|list --help
enter --bogus|unknown option '--bogus'|enter --help
cable --nam x in|unknown option '--nam'; did you mean --name?|cable --help
END

it 'refuses a cable, adapter or router without in or out, and prints the right commands'
for part in cable adapter router; do
    run velk-sandbox $part
    status_is 2
    error_is "velk-sandbox: $part: in or out is missing
  fix: velk-sandbox $part in, or velk-sandbox $part out"
    run velk-sandbox $part sideways
    status_is 2
    error_is "velk-sandbox: $part: 'sideways' is neither in nor out
  fix: velk-sandbox $part in, or velk-sandbox $part out"
done

it 'refuses a folder that does not exist'
run velk-sandbox --writable "/$mark"
status_is 2
output_is ''
error_is "velk-sandbox: --writable: there is no folder '/$mark'
  fix: give a folder that exists"
run velk-sandbox --rootfs "/$mark"
status_is 2
output_is ''
error_is "velk-sandbox: --rootfs: there is no folder or file '/$mark'
  fix: give a folder or file that exists"

it 'refuses an empty name'
for words in '' enter cable; do
    # shellcheck disable=SC2086
    run velk-sandbox $words --name '' out
    status_is 2
    error_is "velk-sandbox: --name: the name is empty; leave --name out, or give a name
  fix: see velk-sandbox ${words:+$words }--help"
done

it 'refuses to keep a private folder writable'
for folder in /tmp /var/tmp /etc/network; do
    [ -d "$folder" ] || continue
    run velk-sandbox --writable "$folder" true
    status_is 125
    error_is "velk-sandbox: $folder cannot stay writable
  fix: give --writable another folder; the device has a $folder of its own"
done

it 'says on a device which one it is, and lists the devices started there'
run velk-sandbox --quiet --name "$mark" velk-sandbox list
status_is 0
output_is ''
error_is "velk-sandbox: this is device $mark
  listed are the devices started on it"

it 'refuses to keep the root folder writable'
run velk-sandbox --writable / -- true
status_is 125
error_is 'velk-sandbox: the root folder cannot stay writable
  fix: give --writable a folder below /'

it 'reports that the files of the device are missing'
mkdir "$lib_folder/alone"
cp "$VELK_BUILD/velk-sandbox" "$lib_folder/alone"
run "$lib_folder/alone/velk-sandbox" -- true
status_is 125
check 'error' "velk-sandbox: cannot read $lib_folder/alone/../share/velk-sandbox/FOLDER: No such file or directory" \
    "$(echo "$error" | sed -E 's,(share/velk-sandbox/)(rootfs|stand-ins/[a-z]+):,\1FOLDER:,')"

it 'finds the files of the device in the installed folder'
mkdir -p "$lib_folder/share/velk-sandbox"
cp -R --preserve=mode "$VELK_BUILD/rootfs" "$VELK_BUILD/stand-ins" "$lib_folder/share/velk-sandbox"
run "$lib_folder/alone/velk-sandbox" --quiet -- head -n 1 /var/libvelk/libvelk
output_is 'ADMINISTRATOR=Robin'

it 'reports that the kernel refuses namespaces'
run unshare -r sh -c 'echo 0 >/proc/sys/user/max_mnt_namespaces || exit 99
    exec velk-sandbox -- true'
if [ "$status" != 99 ]; then # as on a device, where that setting can only be read
    status_is 125
    error_is "velk-sandbox: cannot make mount and network namespaces: the limit in /proc/sys/user is reached
  fix: raise the max_*_namespaces limits in /proc/sys/user"
fi

it 'explains that namespaces are refused, with a next step'
without_rights='setpriv --bounding-set=-all --inh-caps=-all'
if [ "$user" = 0 ]; then
    run $without_rights velk-sandbox true
    status_is 125
    error_is 'velk-sandbox: this container gives its root no right to make namespaces
  fix: start the container with --privileged, or use the machine itself'
fi
# The kernel refuses user namespaces below a changed root folder, as many containers do.
in_changed_root() {
    on_other_mounts "$1"'
        mount --rbind / /mnt && exec /usr/sbin/chroot /mnt '"$2 $VELK_BUILD/velk-sandbox true"
}
as_user='setpriv --reuid 65534 --regid 65534 --clear-groups'
in_changed_root '' "$without_rights"
status_is 125
error_is 'velk-sandbox: this container gives its root no right to make namespaces
  fix: start the container with --privileged, or use the machine itself'
if [ "$user" = 0 ]; then
    in_changed_root '' "$as_user"
    status_is 125
    error_is 'velk-sandbox: this machine or container refuses user namespaces
  fix: use sudo, or start the container with --privileged'
    for setting in unprivileged_userns_clone:0:1 apparmor_restrict_unprivileged_userns:1:0; do
        IFS=: read -r setting refuses allows <<<"$setting"
        in_changed_root "mount -t tmpfs none /proc/sys/kernel
            echo $refuses >/proc/sys/kernel/$setting" "$as_user"
        status_is 125
        error_is "velk-sandbox: the kernel refuses user namespaces to ordinary users
  fix: sudo sysctl kernel.$setting=$allows, or use sudo"
        in_changed_root "mount -t tmpfs none /proc/sys/kernel
            echo $allows >/proc/sys/kernel/$setting" "$as_user"
        error_has 'this machine or container refuses user namespaces'
    done
fi

it 'greets a shell with two lines, unless --quiet is given, and a command with none'
run velk-sandbox --name "$mark"
status_is 0
output_is ''
error_is "velk-sandbox: simulated device $mark; \"exit\" ends it
  try: velkctl list, velkctl doctor, velk-sandbox cable out"
run velk-sandbox --quiet
error_is ''
run velk-sandbox true
error_is ''

it 'prints its options and its version'
run velk-sandbox --help
status_is 0
output_has 'Usage: velk-sandbox [OPTIONS] [COMMAND...]'
output_has '
  --real            Use the system'\''s own tools, and a router; root only
  --no-router       With --real: start with the router disconnected
'
output_has '--writable DIR'
help=$output
run velk-sandbox help
status_is 0
output_is "$help"
run velk-sandbox --version
status_is 0
output_has 'velk-sandbox '

it 'has help and messages within 80 columns'
longest_name=$(printf '%32s' '' | tr ' ' x)
{
    for verb in '' cable adapter router enter watch list; do
        # shellcheck disable=SC2086
        velk-sandbox $verb --help
    done
    velk-sandbox --name "$longest_name" </dev/null
    velk-sandbox --name "$longest_name" velk-sandbox list
    velk-sandbox --name ''
} >"$lib_folder/texts" 2>&1
check 'lines that are too long' '' "$(grep -E '.{81}' "$lib_folder/texts")"
check 'lines' many "$([ "$(wc -l <"$lib_folder/texts")" -gt 80 ] && echo many)"

# --- signals and the end ---

it 'starts the command with the default response to interrupt and quit'
on_device sed -n 's/^SigIgn:\t//p' /proc/self/status
check 'SIGINT and SIGQUIT among the ignored' 0 "$((0x$output & 6))"

it 'reaps orphans'
on_device_sh '(sleep 0.1 & echo $! >/tmp/orphan)
    for try in $(seq 200); do kill -0 $(cat /tmp/orphan) || break; sleep 0.1; done 2>/dev/null
    cat /proc/$(cat /tmp/orphan)/stat'
output_is ''

it 'ends background processes of the command'
on_device_sh "sleep $seconds & setsid sleep $seconds & sleep 0.1"
status_is 0
ends_all_processes

for signal in KILL TERM HUP; do
    it "ends with all its processes when it gets SIG$signal"
    env --default-signal velk-sandbox --quiet -- \
        sh -c "sleep $seconds & setsid sleep $seconds" 2>"$lib_folder/err" &
    wait_until has_sleepers
    check 'running processes' yes "$(has_sleepers && echo yes)"
    kill -s "$signal" $!
    wait $! 2>/dev/null
    ends_all_processes
done

if command -v script >/dev/null; then
    it 'runs an interactive shell at a terminal'
    ln -s "$(readlink -f /bin/sh)" "$lib_folder/ash" # /bin/sh itself would become bash
    for shell in /bin/sh /bin/bash "$lib_folder/ash"; do
        at_terminal "env SHELL=$shell ENV= HOME=/nonexistent velk-sandbox" \
            'tty; echo answer-$((6 * 7))\n' 'sleep 10\n' '\003' 'echo still; exit 3\n'
        output_has answer-42
        output_has /dev/console
        output_has still
        status_is 3
        check 'complaints' '' "$(echo "$output" | grep -i -e 'job control' -e cannot -e "can't")"
    done

    it 'leaves the shell with Ctrl-D and returns the status of its last command'
    # Bash loses a key that comes before its prompt, so the key is typed again.
    for shell in /bin/bash "$lib_folder/ash"; do
        at_terminal "env SHELL=$shell ENV= HOME=/nonexistent velk-sandbox --quiet" 'false\n' 'true\n' \
            '\004' '\004' '\004'
        status_is 0
        at_terminal "env SHELL=$shell ENV= HOME=/nonexistent velk-sandbox --quiet" '(exit 5)\n' \
            '\004' '\004' '\004'
        status_is 5
    done
    at_terminal 'sh -c "env HOME=/nonexistent velk-sandbox --quiet; echo left-\$?"' '\004' '\004' '\004'
    output_has left-0

    it 'takes the terminal back from a killed shell'
    at_terminal 'sh -c "env SHELL=/bin/bash HOME=/nonexistent velk-sandbox --quiet
        read -r line; echo got-\$line"' 'kill -9 $$\n' 'hello\n'
    output_has got-hello

    it 'leaves the interrupt key to the command'
    at_terminal "exec velk-sandbox --quiet -- sh -c 'trap \"echo caught; exit 7\" INT; sleep 10'" '' '\003'
    output_has caught
    status_is 7

    it 'leaves the terminal to the other programs of a pipeline'
    at_terminal 'velk-sandbox --quiet -- sleep 1 |
        { sleep 0.3; read -r line </dev/tty; echo "got-$line"; }' 'hello\n'
    output_has got-hello
fi

starts_within 500

it 'leaves the machine unchanged'
lib_command='all commands of this file'
check 'state of the machine' "$machine_before" "$(machine_state)"

# --- again, as an ordinary user ---

again_as_ordinary_user "$this_file"

finish
