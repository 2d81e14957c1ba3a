#pragma once

#include <QMdiSubWindow>

/// A sub-window that its user cannot close.
class customSubMdiWindow : public QMdiSubWindow
{
    Q_OBJECT

public:
    using QMdiSubWindow::QMdiSubWindow;

protected:
    void closeEvent(QCloseEvent *event) override;
};
