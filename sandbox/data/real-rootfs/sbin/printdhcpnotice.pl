#!/usr/bin/perl
# printdhcpnotice.pl - stands in for the device's notice on paper: writes it into a log.
open(my $log, '>>', '/var/log/dhcp_notices.log') or die;
print $log "printdhcpnotice @ARGV\n";
