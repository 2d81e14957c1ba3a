#pragma once

class QLineEdit;
class QString;
class QTableWidget;

/// What the tables of a panel have in common: each cell that shows something holds an editor.

/// The editor in a cell of a table; null where there is none.
QLineEdit *cellEdit(const QTableWidget *table, int row, int column);
/// A centred editor for a cell. Finishing an edit makes its text one that an answer may replace.
QLineEdit *makeCellEdit(QTableWidget *table, const QString &text);
/// Shows what an answer says, except where the user is typing.
void refillCellEdit(QLineEdit *edit, const QString &text);
/// Leaves a table without rows and columns. A half-typed cell sends nothing on its way out.
void emptyTable(QTableWidget *table);
/// Both headers share the table's room among their sections.
void stretchHeaders(QTableWidget *table, bool hidden);
