#pragma once

#include <QStringList>

/// Names for the columns of a recording after time and counter, from the headings after the first. Headings
/// in Chinese have a question mark for every character; what they said is known by their number, their digits
/// and their order. The heading of the status loses the value that stands behind it.
QStringList columnNames(const QStringList &headings);
