#include "views/customSubMdiWindow.h"

#include <QCloseEvent>

void customSubMdiWindow::closeEvent(QCloseEvent *event)
{
    event->ignore();
}
