#include "panel/ChannelTable.h"

#include "panel/AnswerTable.h"
#include "panel/RequestPort.h"
#include "panel/cell_edit.h"
#include "protocol/payloads.h"

#include <QAbstractButton>
#include <QDebug>
#include <QIntValidator>
#include <QLineEdit>
#include <QPointer>
#include <QTableWidget>
#include <QTimer>

using namespace std::chrono_literals;

/// A column of whole numbers that the user may edit.
struct ChannelTable::Column
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

constexpr std::chrono::milliseconds kParameterReread = 1000ms;

void limit(QLineEdit *edit, int minimum, int maximum)
{
    edit->setValidator(new QIntValidator(minimum, maximum, edit));
}

uint8_t lowByte(const QString &text)
{
    return static_cast<uint8_t>(text.toUShort());
}

QVector<unsigned char> bytesOf(const QByteArray &frame, int position, int count)
{
    QVector<unsigned char> values;
    for (int i = 0; i < count; ++i)
        values += FrameReader(frame).byteAt(position + i);
    return values;
}

QVector<unsigned int> wordsOf(const QByteArray &frame, int position, int count)
{
    QVector<unsigned int> values;
    for (int i = 0; i < count; ++i)
        values += FrameReader(frame).u32At(position + 4 * i);
    return values;
}

} // namespace

ChannelTable::ChannelTable(QTableWidget *table, QAbstractButton *refresh, RequestPort &port)
    : m_table(table)
    , m_refresh(refresh)
    , m_port(port)
{
    stretchHeaders(table, false);
    connect(refresh, &QAbstractButton::clicked, this, [this] { groupRead(); });
}

void ChannelTable::setup()
{
    QStringList rows;
    for (int i = 0; i < m_port.channelCount(); ++i)
        rows += QObject::tr("通道") + QString::number(i);
    m_table->setRowCount(m_port.channelCount());
    m_table->setColumnCount(1);
    m_table->setHorizontalHeaderLabels({QObject::tr("阈值")});
    m_table->setVerticalHeaderLabels(rows);
}

void ChannelTable::clear()
{
    emptyTable(m_table);
}

void ChannelTable::reread()
{
    Q_EMIT m_refresh->clicked();
}

void ChannelTable::rereadLater(std::chrono::milliseconds delay)
{
    QTimer::singleShot(delay, this, [this] { reread(); });
}

// Reads as many parameters as the table has columns for.
void ChannelTable::groupRead()
{
    struct Read
    {
        Command command;
        int bytesPerChannel;
    };
    constexpr std::array<Read, 6> reads = {{{Command::GetThreshold, 4},
                                            {Command::GetExcitation, 1},
                                            {Command::GetRange, 1},
                                            {Command::GetFilter, 6},
                                            {Command::GetTimeout, 4},
                                            {Command::GetDac, 4}}};
    const auto columns = static_cast<size_t>(m_table->columnCount());
    for (size_t i = 0; i < qMin(columns, reads.size()); ++i)
        m_port.requestPerChannel(reads.at(i).command, reads.at(i).bytesPerChannel);
}

template<typename Value>
void ChannelTable::fillColumn(const Column &column, const QVector<Value> &values)
{
    if (m_table->rowCount() != values.size()) {
        qDebug("%s err:%d,%d", column.mismatch, m_table->rowCount(), values.size());
        return;
    }
    if (column.index >= m_table->columnCount())
        return;
    for (int row = 0; row < values.size(); ++row) {
        const QString text = QString::number(values.at(row));
        if (QLineEdit *edit = cellEdit(m_table, row, column.index)) {
            refillCellEdit(edit, text);
            continue;
        }
        QLineEdit *edit = makeCellEdit(m_table, text);
        limit(edit, column.minimum, column.maximum);
        connect(edit, &QLineEdit::editingFinished, this,
                [this, column, row, edit] { sendCell(column, row, edit->text()); });
        m_table->setCellWidget(row, column.index, edit);
    }
}

void ChannelTable::sendCell(const Column &column, int row, const QString &text)
{
    if (text.isEmpty())
        return;
    const auto channel = static_cast<uint8_t>(row);
    if (column.wide)
        m_port.request(column.command, payloadByteAndWord(channel, text.toUInt()));
    else
        m_port.request(column.command, {channel, lowByte(text)});
}

void ChannelTable::setThreshold(const QVector<unsigned int> &values)
{
    fillColumn({0, 0, 2147483647, Command::SetChannelThreshold, true, "setThreshold"}, values);
}

void ChannelTable::setExcF(const QVector<unsigned char> &values)
{
    fillColumn({1, 1, 63, Command::SetExcitation, false, "setExcf"}, values);
}

void ChannelTable::setRange(const QVector<unsigned char> &values)
{
    fillColumn({2, 0, 22, Command::SetRange, false, "setRange"}, values);
}

void ChannelTable::setTimeout(const QVector<unsigned int> &values)
{
    fillColumn({6, 0, 3600000, Command::SetTimeout, true, "setRange"}, values);
}

bool ChannelTable::fitsRows(int first, int second, int third) const
{
    const int rows = m_table->rowCount();
    if (rows == first && rows == second && rows == third)
        return true;
    qDebug("setRange err:%d,%d,%d,%d", rows, first, second, third);
    return false;
}

void ChannelTable::setFilter(const QVector<unsigned char> &first, const QVector<unsigned char> &second,
                             const QVector<float> &third)
{
    if (!fitsRows(first.size(), second.size(), third.size()) || m_table->columnCount() <= kFilterFirst)
        return;
    for (int row = 0; row < first.size(); ++row) {
        const std::array<QString, 3> texts = {QString::number(first.at(row)), QString::number(second.at(row)),
                                              QString::number(third.at(row), 'g', 6)};
        FilterEdits edits = filterRow(row);
        if (edits[0] && edits[1] && edits[2]) {
            for (size_t i = 0; i < edits.size(); ++i)
                refillCellEdit(edits.at(i), texts.at(i));
            continue;
        }
        for (size_t i = 0; i < edits.size(); ++i)
            edits.at(i) = makeCellEdit(m_table, texts.at(i));
        limit(edits[0], 0, kFilterMax);
        limit(edits[1], 0, kFilterMax);
        for (QLineEdit *edit : edits)
            connect(edit, &QLineEdit::editingFinished, this, [this, row, edits] { sendFilter(row, edits); });
        placeFilterRow(row, edits);
    }
}

// The edits that placeFilterRow() placed; null for those that are not there, as after a change of the
// columns.
ChannelTable::FilterEdits ChannelTable::filterRow(int row) const
{
    const std::array<int, 3> columns = {kFilterFirst, kFilterSecond, kFilterThird};
    const QLineEdit *front = cellEdit(m_table, row, kFilterFirst);
    FilterEdits edits{};
    for (size_t i = 0; front && i < edits.size(); ++i)
        edits.at(i) = columns.at(i) < m_table->columnCount()
                          ? cellEdit(m_table, row, columns.at(i))
                          : front->findChild<QLineEdit *>(QString::number(columns.at(i)));
    return edits;
}

// The three values of a row go out together, so an edit without a column of its own lives on unseen with the
// first.
void ChannelTable::placeFilterRow(int row, const FilterEdits &edits)
{
    for (size_t i = 0; i < edits.size(); ++i) {
        const int column = kFilterFirst + static_cast<int>(i);
        if (column < m_table->columnCount()) {
            m_table->setCellWidget(row, column, edits.at(i));
            continue;
        }
        edits.at(i)->setObjectName(QString::number(column));
        edits.at(i)->setParent(edits.front());
        edits.at(i)->hide();
    }
}

// Thirteen bytes: the one request of fixed length that is not eleven.
void ChannelTable::sendFilter(int row, const FilterEdits &edits)
{
    const QString first = edits[0]->text();
    const QString second = edits[1]->text();
    const QString third = edits[2]->text();
    if (first.isEmpty() && second.isEmpty() && third.isEmpty())
        return;
    QByteArray payload;
    payload += static_cast<char>(row);
    payload += static_cast<char>(lowByte(first));
    payload += static_cast<char>(lowByte(second));
    appendWord(payload, floatBits(third.toFloat()));
    m_port.longRequest(Command::SetFilter, payload);
}

void ChannelTable::setDac(const QVector<unsigned char> &first, const QVector<unsigned char> &second,
                          const QVector<unsigned short> &third)
{
    if (!fitsRows(first.size(), second.size(), third.size()))
        return;
    for (int row = 0; row < first.size(); ++row) {
        placeDac(row, kDacFirst, first.at(row));
        placeDac(row, kDacSecond, second.at(row));
        placeDac(row, kDacThird, third.at(row));
    }
}

void ChannelTable::placeDac(int row, int column, int value)
{
    if (column >= m_table->columnCount())
        return;
    const QString text = QString::number(value);
    if (QLineEdit *edit = cellEdit(m_table, row, column)) {
        refillCellEdit(edit, text);
        return;
    }
    QLineEdit *edit = makeCellEdit(m_table, text);
    edit->setReadOnly(true);
    edit->setEnabled(false);
    m_table->setCellWidget(row, column, edit);
}

bool ChannelTable::holdsPerChannel(const QByteArray &rsp, int bytes) const
{
    return m_port.channelCount() == (rsp.size() - kFrameOverhead) / bytes;
}

void ChannelTable::showThreshold(const QByteArray &rsp)
{
    if (holdsPerChannel(rsp, 4))
        setThreshold(wordsOf(rsp, kPayloadAt, m_port.channelCount()));
}

void ChannelTable::showTimeout(const QByteArray &rsp)
{
    if (holdsPerChannel(rsp, 4))
        setTimeout(wordsOf(rsp, kPayloadAt, m_port.channelCount()));
}

void ChannelTable::showExcitation(const QByteArray &rsp)
{
    if (holdsPerChannel(rsp, 1))
        setExcF(bytesOf(rsp, kPayloadAt, m_port.channelCount()));
}

void ChannelTable::showRange(const QByteArray &rsp)
{
    if (holdsPerChannel(rsp, 1))
        setRange(bytesOf(rsp, kPayloadAt, m_port.channelCount()));
}

void ChannelTable::showFilter(const QByteArray &rsp)
{
    if (!holdsPerChannel(rsp, 6))
        return;
    const int channels = m_port.channelCount();
    QVector<float> third;
    for (int i = 0; i < channels; ++i)
        third += FrameReader(rsp).floatAt(kPayloadAt + 2 * channels + 4 * i);
    setFilter(bytesOf(rsp, kPayloadAt, channels), bytesOf(rsp, kPayloadAt + channels, channels), third);
}

void ChannelTable::showDac(const QByteArray &rsp)
{
    const FrameReader reader(rsp);
    QVector<unsigned char> first;
    QVector<unsigned char> second;
    QVector<unsigned short> third;
    for (int i = 0; i < m_port.channelCount(); ++i) {
        const int position = kPayloadAt + 4 * i;
        first += reader.byteAt(position);
        second += reader.byteAt(position + 1);
        third += reader.u16At(position + 2);
    }
    setDac(first, second, third);
}

void ChannelTable::acknowledgeAndReread(const QByteArray &req, const QByteArray &rsp)
{
    const QPointer<ChannelTable> self(this);
    acknowledge(req, rsp);
    // The box ran an event loop, in which the sensor may have gone and the panel with it.
    if (self)
        rereadLater(kParameterReread);
}
