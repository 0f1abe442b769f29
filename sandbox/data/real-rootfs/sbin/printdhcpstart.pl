#!/usr/bin/perl
# printdhcpstart.pl - replaces the printed notice of the device. It writes a line to a log.
open(my $log, '>>', '/var/log/dhcp_notices.log') or die;
print $log "printdhcpstart @ARGV\n";
