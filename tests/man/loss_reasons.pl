#!/usr/bin/perl
# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

# Usage: perl loss_reasons.pl FILE.cpp...
#
# Prints the texts of which the sources of ostrafel-export make the reasons why something does not
# come back, one a line: each literal in a call of Lose, in what is inserted into losses, in ReasonOf
# and in a constant named kNo....
use strict;
use warnings;

undef $/;
my $literal = qr/"((?:[^"\\]|\\.)*)"/;

for my $file (@ARGV) {
    open my $input, '<', $file or die "$file: $!\n";
    my $source = <$input>;
    $source =~ s/^\s*\/\/.*$//mg;
    my @places = $source =~ /^std::string ReasonOf.*?^}/msg;
    push @places, $source =~ /^constexpr const char\* kNo\w+ = .*?;/mg;
    # From the parenthesis of a call to the one that matches it.
    while ($source =~ /\b(?:Lose|\w*losses_?(?:\.|->)insert)(?=\()/g) {
        my $start = pos $source;
        my ($depth, $end) = (0, $start);
        my $rest = substr $source, $start;
        while ($rest =~ /\G(?:$literal|([()])|[^"()]+)/gc) {
            next unless defined $2;
            $depth += $2 eq '(' ? 1 : -1;
            last if $depth == 0;
        }
        push @places, substr $rest, 0, pos $rest;
    }
    for my $place (@places) {
        while ($place =~ /$literal/g) {
            my $piece = $1;
            $piece =~ s/\\(.)/$1/g;
            print "$piece\n" if $piece =~ /[a-z] [a-z]/;
        }
    }
}
