#pragma once

#include "views/class_finger.h"
#include "views/models/ViewForm.h"

#include <QWidget>

#include <memory>

class TileArray;
struct ViewLayout;

/// The acting class of the view family: a picture of the sensor's regions that shows what the decoder hands
/// over, by the constants of one layout row.
class ModelView : public QWidget, public class_finger
{
    Q_OBJECT

public:
    /// Decodes by the catalogue row of the layout's number; a layout without such a row gives a view that
    /// refuses all frames. The layout must outlive the view.
    explicit ModelView(const ViewLayout &layout, QWidget *parent = nullptr);
    ~ModelView() override;

    void setShowData(bool show) override;
    void setYdds(unsigned char block, float normal, float tangential, unsigned short direction) override;
    void setSProx(unsigned char index, unsigned int value) override;
    void setMProx(unsigned char index, unsigned int value) override;
    void setPress(unsigned char channel, float newtons, float range) override;
    void setPressNList(QVector<float> newtons, float range) override;

protected:
    const ViewLayout &m_layout;
    ViewForm ui;
    bool showData = false;

private:
    void announce() const;
    void showBoardPicture();

    std::unique_ptr<TileArray> m_tiles;
};
