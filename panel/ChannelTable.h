#pragma once

#include <QObject>
#include <QVector>

#include <array>
#include <chrono>

class QAbstractButton;
class QLineEdit;
class QTableWidget;
class RequestPort;

/// The table of channel parameters: one row a channel, one column a parameter.
///
/// Cells come with the first values of their column. Finishing an edit sends the cell's parameter; a column
/// that the table does not have is neither read nor shown.
class ChannelTable : public QObject
{
public:
    /// refresh: the button by which the user rereads the table; so does the panel.
    ChannelTable(QTableWidget *table, QAbstractButton *refresh, RequestPort &port);

    /// Builds a row for each channel of the port, and the one column that a user sees.
    void setup();
    void clear();
    void reread();
    /// Gives the sensor time to take over what it was sent.
    void rereadLater(std::chrono::milliseconds delay);

    /// Each fills columns from one value a channel; vectors of another length than the table change nothing.
    void setThreshold(const QVector<unsigned int> &values);
    void setTimeout(const QVector<unsigned int> &values);
    void setExcF(const QVector<unsigned char> &values);
    void setRange(const QVector<unsigned char> &values);
    void setFilter(const QVector<unsigned char> &first, const QVector<unsigned char> &second,
                   const QVector<float> &third);
    void setDac(const QVector<unsigned char> &first, const QVector<unsigned char> &second,
                const QVector<unsigned short> &third);

    void showThreshold(const QByteArray &rsp);
    void showTimeout(const QByteArray &rsp);
    void showExcitation(const QByteArray &rsp);
    void showRange(const QByteArray &rsp);
    void showFilter(const QByteArray &rsp);
    void showDac(const QByteArray &rsp);
    /// What a new excitation or range does to the other parameters is the sensor's to tell, a while later.
    void acknowledgeAndReread(const QByteArray &req, const QByteArray &rsp);

private:
    struct Column;
    using FilterEdits = std::array<QLineEdit *, 3>;

    void groupRead();
    bool holdsPerChannel(const QByteArray &rsp, int bytes) const;
    bool fitsRows(int first, int second, int third) const;
    template<typename Value>
    void fillColumn(const Column &column, const QVector<Value> &values);
    void sendCell(const Column &column, int row, const QString &text);
    FilterEdits filterRow(int row) const;
    void placeFilterRow(int row, const FilterEdits &edits);
    void sendFilter(int row, const FilterEdits &edits);
    void placeDac(int row, int column, int value);

    QTableWidget *m_table;
    QAbstractButton *m_refresh;
    RequestPort &m_port;
};
