// The table of channel parameters: one row a channel, one column a parameter.

#include "panel/fingerForm.h"

#include "ui_fingerForm.h"

#include "panel/cell_edit.h"
#include "protocol/payloads.h"

#include <QIntValidator>
#include <QLineEdit>

#include <algorithm>

/// A column of whole numbers that the user may edit.
struct fingerForm::Column
{
    int index;
    int minimum;
    int maximum;
    Command command;
    bool wide;            ///< 32 bits go out, otherwise the low byte
    const char *mismatch; ///< log line when rows and values differ
};

namespace {

enum FilterColumn { kFilterFirst = 3, kFilterSecond = 4, kFilterThird = 5 };
enum DacColumn { kDacFirst = 7, kDacSecond = 8, kDacThird = 9 };
constexpr int kFilterMax = 16;

void limit(QLineEdit *edit, int minimum, int maximum)
{
    edit->setValidator(new QIntValidator(minimum, maximum, edit));
}

// True when the three vectors have a value for each row.
bool fitsRows(int rows, int first, int second, int third)
{
    if (rows == first && rows == second && rows == third)
        return true;
    qDebug("setRange err:%d,%d,%d,%d", rows, first, second, third);
    return false;
}

uint8_t lowByte(const QString &text)
{
    return static_cast<uint8_t>(text.toUShort());
}

} // namespace

template<typename Value>
void fingerForm::fillColumn(const Column &column, const QVector<Value> &values)
{
    QTableWidget *table = ui->tbwThreshold;
    if (table->rowCount() != values.size()) {
        qDebug("%s err:%d,%d", column.mismatch, table->rowCount(), values.size());
        return;
    }
    if (column.index >= table->columnCount())
        return;
    for (int row = 0; row < values.size(); ++row) {
        const QString text = QString::number(values.at(row));
        if (QLineEdit *edit = cellEdit(table, row, column.index)) {
            refillCellEdit(edit, text);
            continue;
        }
        QLineEdit *edit = makeCellEdit(table, text);
        limit(edit, column.minimum, column.maximum);
        connect(edit, &QLineEdit::editingFinished, this,
                [this, column, row, edit] { sendCell(column, row, edit->text()); });
        table->setCellWidget(row, column.index, edit);
    }
}

void fingerForm::sendCell(const Column &column, int row, const QString &text)
{
    if (text.isEmpty())
        return;
    const auto channel = static_cast<uint8_t>(row);
    if (column.wide)
        port.request(column.command, payloadByteAndWord(channel, text.toUInt()));
    else
        port.request(column.command, {channel, lowByte(text)});
}

void fingerForm::setThreshold(const QVector<unsigned int> &values)
{
    fillColumn({0, 0, 2147483647, Command::SetChannelThreshold, true, "setThreshold"}, values);
}

void fingerForm::setExcF(const QVector<unsigned char> &values)
{
    fillColumn({1, 1, 63, Command::SetExcitation, false, "setExcf"}, values);
}

void fingerForm::setRange(const QVector<unsigned char> &values)
{
    fillColumn({2, 0, 22, Command::SetRange, false, "setRange"}, values);
}

void fingerForm::setTimeout(const QVector<unsigned int> &values)
{
    fillColumn({6, 0, 3600000, Command::SetTimeout, true, "setRange"}, values);
}

void fingerForm::setFilter(const QVector<unsigned char> &first, const QVector<unsigned char> &second,
                           const QVector<float> &third)
{
    QTableWidget *table = ui->tbwThreshold;
    if (!fitsRows(table->rowCount(), first.size(), second.size(), third.size()))
        return;
    if (table->columnCount() <= kFilterFirst)
        return;
    for (int row = 0; row < first.size(); ++row) {
        const std::array<QString, 3> texts = {QString::number(first.at(row)), QString::number(second.at(row)),
                                              QString::number(third.at(row), 'g', 6)};
        std::array<QLineEdit *, 3> edits = filterRow(row);
        if (edits[0] && edits[1] && edits[2]) {
            for (size_t i = 0; i < edits.size(); ++i)
                refillCellEdit(edits.at(i), texts.at(i));
            continue;
        }
        for (size_t i = 0; i < edits.size(); ++i)
            edits.at(i) = makeCellEdit(table, texts.at(i));
        limit(edits[0], 0, kFilterMax);
        limit(edits[1], 0, kFilterMax);
        for (QLineEdit *edit : edits)
            connect(edit, &QLineEdit::editingFinished, this, [this, row, edits] {
                sendFilter(row, edits[0]->text(), edits[1]->text(), edits[2]->text());
            });
        placeFilterRow(row, edits);
    }
}

// The edits that placeFilterRow() placed; null for those that are not there, as after a change of the columns.
std::array<QLineEdit *, 3> fingerForm::filterRow(int row) const
{
    const QTableWidget *table = ui->tbwThreshold;
    const std::array<int, 3> columns = {kFilterFirst, kFilterSecond, kFilterThird};
    const QLineEdit *front = cellEdit(table, row, kFilterFirst);
    std::array<QLineEdit *, 3> edits{};
    for (size_t i = 0; front && i < edits.size(); ++i)
        edits.at(i) = columns.at(i) < table->columnCount()
                          ? cellEdit(table, row, columns.at(i))
                          : front->findChild<QLineEdit *>(QString::number(columns.at(i)));
    return edits;
}

// The three values of a row go out together, so an edit without a column of its own lives on unseen with the first.
void fingerForm::placeFilterRow(int row, const std::array<QLineEdit *, 3> &edits)
{
    QTableWidget *table = ui->tbwThreshold;
    for (size_t i = 0; i < edits.size(); ++i) {
        const int column = kFilterFirst + static_cast<int>(i);
        if (column < table->columnCount()) {
            table->setCellWidget(row, column, edits.at(i));
            continue;
        }
        edits.at(i)->setObjectName(QString::number(column));
        edits.at(i)->setParent(edits.front());
        edits.at(i)->hide();
    }
}

// Thirteen bytes: the one request of fixed length that is not eleven.
void fingerForm::sendFilter(int row, const QString &first, const QString &second, const QString &third)
{
    if (first.isEmpty() && second.isEmpty() && third.isEmpty())
        return;
    QByteArray payload;
    payload += static_cast<char>(row);
    payload += static_cast<char>(lowByte(first));
    payload += static_cast<char>(lowByte(second));
    appendWord(payload, floatBits(third.toFloat()));
    port.longRequest(Command::SetFilter, payload);
}

void fingerForm::setDac(const QVector<unsigned char> &first, const QVector<unsigned char> &second,
                        const QVector<unsigned short> &third)
{
    QTableWidget *table = ui->tbwThreshold;
    if (!fitsRows(table->rowCount(), first.size(), second.size(), third.size()))
        return;
    const auto place = [table](int row, int column, int value) {
        if (column >= table->columnCount())
            return;
        if (QLineEdit *edit = cellEdit(table, row, column)) {
            refillCellEdit(edit, QString::number(value));
            return;
        }
        QLineEdit *edit = makeCellEdit(table, QString::number(value));
        edit->setReadOnly(true);
        edit->setEnabled(false);
        table->setCellWidget(row, column, edit);
    };
    for (int row = 0; row < first.size(); ++row) {
        place(row, kDacFirst, first.at(row));
        place(row, kDacSecond, second.at(row));
        place(row, kDacThird, third.at(row));
    }
}
