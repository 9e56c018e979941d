# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

# Usage: perl source_messages.pl SOURCE...
#
# Prints every message that C++ sources can print, one a line, with %s where something is filled in.
# A message that does not end its line is followed by " (without a line end)". Messages are the
# formats of PrintMessage, the strings of puts, and constants that end a line. Ends with
# status 1, and says where, when something may be printed that nobody would find in this way.
use strict;
use warnings;

my $literals = qr/(?:"(?:[^"\\]|\\.)*"\s*)+/;
my $failures = 0;

sub emit {
  my ($written, $end) = @_;
  my $message = join '', $written =~ /"((?:[^"\\]|\\.)*)"/g;
  $message =~ s/\\n/\n/g;
  $message =~ s/\\(.)/$1/g;
  $message .= $end;
  return if $message eq '%s';    # of a constant, which is counted itself
  $message =~ s/%[a-z]/%s/g;
  my $is_ended = $message =~ /\n\z/;
  my @lines = split /\n/, $message;
  $lines[-1] .= ' (without a line end)' unless $is_ended;
  print "$_\n" for @lines;
}

for my $source (@ARGV) {
  open my $file, '<', $source or die "$source: $!\n";
  my $code = do { local $/; <$file> };
  $code =~ s{(^|\s)//[^\n]*}{$1}mg;
  $code =~ s{^#[^\n]*}{}mg;
  if ($source !~ m{base/message\.(cpp|h)$}) {
    while ($code =~ /\b((?:v?[fd]?printf|f?put[cs]|putchar|fwrite|writev?|syslog|psignal|perror)\((?:\S*)|cerr|cout|clog)/g) {
      my $call = $1;
      next if $call =~ /^puts\("/;
      print STDERR "$source: $call is no known way to print a message\n";
      $failures = 1;
    }
  }
  if ($source !~ m{base/message\.h$}) {
    while ($code =~ /\bPrintMessage\((?!\s*")([^;]*)/g) {
      next if $1 =~ /^const char\* format, \.\.\.\) \{/;
      print STDERR "$source: $1 may be any text\n";
      $failures = 1;
    }
    while ($code =~ /\bPrintMessage\("%s", (\w+)/g) {
      next if $1 eq 'message' || $code =~ /\bconstexpr const char\* $1 =/;
      print STDERR "$source: $1 may be any text\n";
      $failures = 1;
    }
  }
  emit($1, '') while $code =~ /\bPrintMessage\(\s*($literals)/g;
  emit($1, "\n") while $code =~ /\bputs\(\s*($literals)/g;
  print "Usage:\n" if $code =~ /R"\(Usage:\n/;
  while ($code =~ /\bconstexpr const char\* \w+ =\s*($literals);/g) {
    my $value = $1;
    emit($value, '') if $value =~ /\\n"\s*\z/;
  }
}
exit $failures;
