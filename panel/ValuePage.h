#pragma once

#include <QList>
#include <QObject>
#include <QVector>

class dataForm;
class QScrollArea;
class QVBoxLayout;
class RequestPort;
struct finger_info_ts;

/// The page of values: a cell for each string of a sample. The cells of channels reset and enable theirs.
class ValuePage : public QObject
{
public:
    ValuePage(QScrollArea *area, QVBoxLayout *layout, RequestPort &port);

    void addCells(const finger_info_ts &model);
    void clearSensorChannelWg();
    /// Every string of a sample, in frame order. The first of them are the channels, which also tell touch by
    /// colour.
    void show(const QVector<QString> &values);

private:
    void addSensorChannelWg(const QString &name, unsigned char type);
    void alignCells();

    QScrollArea *m_area;
    QVBoxLayout *m_layout;
    RequestPort &m_port;
    QList<dataForm *> m_cells;
};
