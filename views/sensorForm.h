#pragma once

#include <QList>
#include <QWidget>

#include <cstdint>

class QGridLayout;
class class_ydds;

/// Grid of force gauges for array sensors.
class sensorForm : public QWidget
{
    Q_OBJECT

public:
    explicit sensorForm(QWidget *parent = nullptr);

    /// Makes rows x columns tiles. Called once in the life of a form: a second shape of as many tiles changes
    /// only the numbers, one of another count leaves the old tiles where they are, below the new ones.
    void setRowColumnCount(unsigned char rowCount, unsigned char columnCount);

    uint8_t rows = 0;
    uint8_t columns = 0;
    /// Tile of row r and column c at r * columns + c; owned by the form.
    QList<class_ydds *> yddsList;

private:
    QGridLayout *m_grid;
};
