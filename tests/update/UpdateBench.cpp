#include "tests/update/UpdateBench.h"

#include <QtTest>

bool UpdateTab::enter(const UpdateBench &bench)
{
    QRadioButton *const choices[] = {uart, ch341, ch347};
    choices[static_cast<int>(bench.kind)]->setChecked(true);
    form.start();
    if (!QTest::qWaitFor([&] { return devices->findText(bench.id()) >= 0; }, 20000))
        return false;
    devices->setCurrentText(bench.id());
    board->setCurrentIndex(1);
    address->setValue(UpdateBench::kAddress);
    resetAddress->setValue(UpdateBench::kAddress);
    return true;
}

void UpdateTab::chooseFile(const QByteArray &content, const QString &name, bool masked)
{
    QFile file(m_folder.filePath(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), qint64{content.size()});
    path->setText(file.fileName());
    version->setCurrentIndex(masked ? 0 : 1);
}

bool UpdateTab::runToEnd(int timeoutMs)
{
    start->click();
    return QTest::qWaitFor([this] { return !isBusy(); }, timeoutMs);
}
