# web_contents_updater.pl - stands in for the device's updater: notes that it ran.
open(my $log, '>>', '/var/log/web_contents_updater.log') or die;
print $log "updated\n";
