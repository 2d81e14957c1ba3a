#pragma once

#include <QWidget>

#include <memory>

namespace Ui {
class Widget;
}

/// The main window: four tabs, of which only the current one may use the hardware.
class Widget : public QWidget
{
    Q_OBJECT

public:
    explicit Widget(QWidget *parent = nullptr);
    ~Widget() override;

private:
    void startOnly(int index);

    std::unique_ptr<Ui::Widget> ui;
};
