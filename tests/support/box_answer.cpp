#include "tests/support/box_answer.h"

#include <QAbstractButton>
#include <QApplication>
#include <QEvent>
#include <QPointer>
#include <QTimer>

BoxAnswer::BoxAnswer(QObject *parent)
    : QObject(parent)
{
    qApp->installEventFilter(this);
}

void BoxAnswer::expect(const QString &title, const QString &text, QMessageBox::StandardButton answer)
{
    m_expected.enqueue({title, text, answer});
}

QString BoxAnswer::report() const
{
    QStringList lines = m_failures;
    for (const Expectation &missing : m_expected)
        lines.append(QStringLiteral("did not come: [%1] [%2]").arg(missing.title, missing.text));
    return lines.join(QLatin1Char('\n'));
}

bool BoxAnswer::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Show) {
        if (auto *box = qobject_cast<QMessageBox *>(watched)) {
            // The box enters its event loop only after this event, so the answer has to come from inside that
            // loop.
            QTimer::singleShot(0, box, [this, box] { answer(box); });
        }
    }
    return QObject::eventFilter(watched, event);
}

void BoxAnswer::answer(QMessageBox *box)
{
    ++m_seen;
    const QPointer<QMessageBox> alive(box);
    if (whileOpen)
        whileOpen();
    if (alive.isNull())
        return;
    if (m_expected.isEmpty() || m_expected.head().title != box->windowTitle() ||
        m_expected.head().text != box->text()) {
        m_failures.append(QStringLiteral("unexpected: [%1] [%2]").arg(box->windowTitle(), box->text()));
        box->close();
        return;
    }
    const Expectation expectation = m_expected.dequeue();
    QAbstractButton *button = box->button(expectation.answer);
    if (button == nullptr) {
        m_failures.append(QStringLiteral("no such button: [%1]").arg(box->windowTitle()));
        box->close();
        return;
    }
    button->click();
}
