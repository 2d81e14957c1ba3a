#include "panel/cell_edit.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QTableWidget>

QLineEdit *cellEdit(const QTableWidget *table, int row, int column)
{
    return qobject_cast<QLineEdit *>(table->cellWidget(row, column));
}

QLineEdit *makeCellEdit(QTableWidget *table, const QString &text)
{
    auto *edit = new QLineEdit(text, table);
    edit->setAlignment(Qt::AlignCenter);
    QObject::connect(edit, &QLineEdit::editingFinished, edit, [edit] { edit->setModified(false); });
    return edit;
}

void refillCellEdit(QLineEdit *edit, const QString &text)
{
    const bool typing = edit->hasFocus() && edit->isModified();
    if (!typing && edit->text() != text)
        edit->setText(text);
}

// An edit that was typed into is finished when the focus leaves it, and would send even then.
void emptyTable(QTableWidget *table)
{
    const auto edits = table->findChildren<QLineEdit *>();
    for (QLineEdit *edit : edits)
        edit->blockSignals(true);
    table->clear();
    table->setRowCount(0);
    table->setColumnCount(0);
}

void stretchHeaders(QTableWidget *table, bool hidden)
{
    for (QHeaderView *header : {table->horizontalHeader(), table->verticalHeader()}) {
        header->setSectionResizeMode(QHeaderView::Stretch);
        header->setHidden(hidden);
    }
}
