#pragma once

#include <QMessageBox>
#include <QObject>
#include <QQueue>

#include <functional>

/// Answers modal message boxes in the order in which they were announced. Every box must have been announced
/// with its exact title and text; one that was not is closed at once and counts as a failure.
class BoxAnswer : public QObject
{
    Q_OBJECT

public:
    explicit BoxAnswer(QObject *parent = nullptr);

    /// Announces the next box. The answer is pressed as soon as the box is on the screen.
    void expect(const QString &title, const QString &text,
                QMessageBox::StandardButton answer = QMessageBox::Ok);

    /// Boxes seen so far, and true when all announced boxes came and no other.
    int seen() const { return m_seen; }
    bool satisfied() const { return m_expected.isEmpty() && m_failures.isEmpty(); }
    /// What went wrong, a line a box, for the message of a failing check.
    QString report() const;

    /// Runs inside the box's event loop, before its answer is given: what happens to the program while a box
    /// is open.
    std::function<void()> whileOpen;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Expectation
    {
        QString title;
        QString text;
        QMessageBox::StandardButton answer;
    };

    void answer(QMessageBox *box);

    QQueue<Expectation> m_expected;
    QStringList m_failures;
    int m_seen = 0;
};
