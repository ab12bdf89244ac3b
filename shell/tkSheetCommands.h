#pragma once

#include "shell/tkCommandArguments.h"
#include "shell/tkCommandSession.h"
#include "shell/tkCommandWire.h"

// The time sheet commands of the command-line tool: read-only views of the entries, in the
// sheet's order, within --since and --until (dates included) when given. Dates are shown as
// YYYY-MM-DD; durations as the sheet holds them. Each throws tkCommandFailure when it can't.

// The entries as a table, with their count and total.
void showSheet(const tkCommandArguments& arguments, tkCommandSession& session,
               tkCommandReply& reply);
// The total; with --by employee, fee, job or date a subtotal per group as well, groups in the
// order in which the sheet sorts by that key.
void showTotals(const tkCommandArguments& arguments, tkCommandSession& session,
                tkCommandReply& reply);
// --format tsv (the default), csv (RFC 4180) or json (an array of objects with the six fields
// and the seconds), each entry with its seconds.
void exportSheet(const tkCommandArguments& arguments, tkCommandSession& session,
                 tkCommandReply& reply);
