#include "update/fwUpdateForm.h"

#include "app/class_settings.h"
#include "update/firmware_image.h"
#include "update/reset_command.h"

#include "ui_fwUpdateForm.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QRegularExpressionValidator>

namespace {

QString filePathKey()
{
    return QStringLiteral("UPDATE/FILE_PATH");
}

} // namespace

fwUpdateForm::fwUpdateForm(QWidget *parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::fwUpdateForm>())
    , m_defaultReset(defaultResetCommand())
{
    qDebug("fwUpdateForm new");
    ui->setupUi(this);
    init();
}

fwUpdateForm::~fwUpdateForm()
{
    dropSender();
    uartDeinit();
    ch341Deinit();
    ch347Deinit();
}

void fwUpdateForm::init()
{
    qDebug("fwUpdateForm init");
    initInterfaces();
    initResetCommand();
    initFile();
    connect(ui->pbtnUpdateStart, &QPushButton::clicked, this, &fwUpdateForm::startClicked);
    ui->pbtnUpdateStart->installEventFilter(this);
    connect(this, &fwUpdateForm::si_updateStart, this, &fwUpdateForm::runUpdate);
}

// The first press of a double click has done what the user meant; the second would undo it.
bool fwUpdateForm::eventFilter(QObject *watched, QEvent *event)
{
    return watched == ui->pbtnUpdateStart && event->type() == QEvent::MouseButtonDblClick;
}

void fwUpdateForm::initResetCommand()
{
    static const QRegularExpression hexDigits(QStringLiteral("^[0-9a-fA-F]+$"));
    ui->leResetCmd->setValidator(new QRegularExpressionValidator(hexDigits, ui->leResetCmd));
    const auto enableFields = [this](int index) {
        ui->leResetCmd->setEnabled(index == 1);
        ui->spbResetAddr->setEnabled(index < 2);
    };
    connect(ui->cbbResetCmd, QOverload<int>::of(&QComboBox::currentIndexChanged), this, enableFields);
    enableFields(0);
}

void fwUpdateForm::initFile()
{
    ui->leUpdateFilePath->setText(class_settings::get(filePathKey()));
    connect(ui->leUpdateFilePath, &QLineEdit::textChanged, this,
            [](const QString &path) { class_settings::set(filePathKey(), path); });
    connect(ui->pbtnUpdateFileSelect, &QPushButton::clicked, this, &fwUpdateForm::selectFile);
}

void fwUpdateForm::selectFile()
{
    // The patterns in parentheses are for dialogs that do not split at ';'; the user sees what stands before them.
    const QString path = QFileDialog::getOpenFileName(
        this, QObject::tr("选择app文件"), class_settings::get(filePathKey()),
        QStringLiteral("*.bin;*.hex (*.bin *.hex)"), nullptr, QFileDialog::HideNameFilterDetails);
    if (!path.isEmpty())
        ui->leUpdateFilePath->setText(QDir::toNativeSeparators(path));
}

void fwUpdateForm::start()
{
    qDebug("fwUpdateForm start");
    QRadioButton *chosen = ui->rbtnIIC;
    for (QRadioButton *button : {ui->rbtnUart, ui->rbtnIICCh347, ui->rbtnIIC}) {
        if (button->isChecked())
            chosen = button;
    }
    chosen->setChecked(true);
    Q_EMIT chosen->clicked();
}

void fwUpdateForm::stop()
{
    qDebug("fwUpdateForm stop");
    if (isBridgeChosen())
        m_boardIndex = ui->cbbInfIdx->currentIndex();
    uartDeinit();
    ch341Deinit();
    ch347Deinit();
}

QString fwUpdateForm::getFile() const
{
    return ui->leUpdateFilePath->text();
}

int fwUpdateForm::loadAppFile(QString path, bool merge, QString *name, QByteArray *image)
{
    QFile file(path);
    if (!file.exists())
        return -1;
    QByteArray content;
    if (file.open(QIODevice::ReadOnly))
        content = file.readAll();
    // A file that breaks off while it is read must not be sent as if it were whole.
    if (!file.isOpen() || file.error() != QFileDevice::NoError) {
        ui->lbRes->setText(QObject::tr("文件打开失败"));
        return -2;
    }
    file.close();
    const QString fileName = QFileInfo(path).fileName();
    const QByteArray loaded = firmwareImage(fileName, content, merge);
    if (loaded.isEmpty()) {
        ui->lbRes->setText(QObject::tr("用户程序文件为空文件"));
        return -3;
    }
    name->append(fileName);
    image->append(loaded);
    return 0;
}
