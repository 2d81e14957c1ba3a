#pragma once

#include "views/models/ModelView.h"

#include <QList>

class dataForm;

/// The view made for program id 2: beside the gauge a list of cells, one a value.
class fingerForm_2 : public ModelView
{
    Q_OBJECT

public:
    explicit fingerForm_2(QWidget *parent = nullptr);

    void setData(unsigned char channel, unsigned int value) override;
    void setTouchState(unsigned char channel, bool touched) override;
    void setYdds(unsigned char block, float normal, float tangential, unsigned short direction) override;
    void setSProx(unsigned char index, unsigned int value) override;

private:
    /// Appends a cell; `noButtons` other than 0 leaves caption and value only.
    dataForm *addSensorChannelWg(QString caption, unsigned char noButtons);
    void addCells();
    void writeCell(int index, const QString &text);

    QList<dataForm *> dataFormList;
};
