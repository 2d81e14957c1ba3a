#include "app/Widget.h"

#include "app/InputGuard.h"

#include "ui_Widget.h"

namespace {

template<typename Form>
void startOrStop(Form *form, bool start)
{
    if (start)
        form->start();
    else
        form->stop();
}

} // namespace

Widget::Widget(QWidget *parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::Widget>())
{
    // Ahead of the boxes, so that it sees them all come.
    QCoreApplication::instance()->installEventFilter(new InputGuard(this));
    ui->setupUi(this);
    setWindowTitle(QObject::tr("触觉传感器上位机"));
    ui->tabWidget->setCurrentIndex(0);
    connect(ui->tabWidget, &QTabWidget::currentChanged, this, &Widget::startOnly);
    // Starts the first tab; the change of index above came before anybody listened.
    Q_EMIT ui->tabWidget->currentChanged(0);
}

Widget::~Widget() = default;

// Always in tab order, so a form may start before a later one has stopped.
void Widget::startOnly(int index)
{
    startOrStop(ui->wgTactView, index == 0);
    startOrStop(ui->wgUpdate, index == 1);
    startOrStop(ui->wgSetAddr, index == 2);
    startOrStop(ui->wgDebug, index == 3);
}
