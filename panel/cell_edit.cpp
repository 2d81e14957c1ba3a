#include "panel/cell_edit.h"

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
