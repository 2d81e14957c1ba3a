// The English table against the whole tool: nothing on the screen that it should have translated.

#include "app/Widget.h"
#include "protocol/finger_info.h"
#include "tests/panel/panel_bench.h"
#include "views/class_finger.h"
#include "views/models/view_factory.h"

#include <QtTest>
#include <QtWidgets>

#include <functional>
#include <memory>

namespace {

using Make = std::function<std::shared_ptr<QWidget>()>;

/// A text on the screen.
struct ShownText
{
    QStringList contexts; ///< classes of the widget and of what is around it, then QObject
    QString text;
};

QStringList textsOfModel(const QAbstractItemModel &model, const QModelIndex &parent = {})
{
    QStringList texts;
    for (int column = 0; column < model.columnCount(parent); ++column)
        texts << model.headerData(column, Qt::Horizontal).toString();
    for (int row = 0; row < model.rowCount(parent); ++row) {
        texts << model.headerData(row, Qt::Vertical).toString();
        for (int column = 0; column < model.columnCount(parent); ++column)
            texts << model.index(row, column, parent).data().toString();
        texts << textsOfModel(model, model.index(row, 0, parent));
    }
    return texts;
}

QStringList textsOf(const QWidget *widget)
{
    QStringList texts;
    for (const char *name :
         {"toolTip", "windowTitle", "statusTip", "text", "title", "placeholderText", "prefix", "suffix"})
        texts << widget->property(name).toString();
    for (const QAction *action : widget->actions())
        texts << action->text();
    if (const auto *tabs = qobject_cast<const QTabBar *>(widget)) {
        for (int i = 0; i < tabs->count(); ++i)
            texts << tabs->tabText(i) << tabs->tabToolTip(i);
    }
    if (const auto *combo = qobject_cast<const QComboBox *>(widget))
        texts << textsOfModel(*combo->model());
    if (const auto *view = qobject_cast<const QAbstractItemView *>(widget);
        view != nullptr && view->model() != nullptr)
        texts << textsOfModel(*view->model());
    return texts;
}

/// All texts of a widget and of everything in it, in the same order for the same widgets.
QVector<ShownText> shownTexts(const QWidget &widget, QStringList contexts = {QStringLiteral("QObject")})
{
    contexts.prepend(QString::fromLatin1(widget.metaObject()->className()));
    QVector<ShownText> shown;
    for (const QString &text : textsOf(&widget))
        shown.append({contexts, text});
    for (const QWidget *inside : widget.findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly))
        shown += shownTexts(*inside, contexts);
    return shown;
}

/// Every tab as it looks after a visit, with every interface that can be chosen on it.
std::shared_ptr<QWidget> visitedWindow()
{
    auto window = std::make_shared<Widget>();
    auto *tabs = window->findChild<QTabWidget *>(QStringLiteral("tabWidget"));
    for (const int tab : {1, 2, 3}) {
        tabs->setCurrentIndex(tab);
        for (QRadioButton *button : tabs->currentWidget()->findChildren<QRadioButton *>())
            button->click();
    }
    auto *interfaces = window->findChild<QComboBox *>(QStringLiteral("cbbInf"));
    for (const int row : {1, 2, 0, 1})
        interfaces->setCurrentIndex(row);
    return window;
}

std::shared_ptr<QWidget> allViews()
{
    auto shelf = std::make_shared<QWidget>();
    for (const finger_info_ts &model : finger_infos)
        makeView(model.prg, shelf.get());
    return shelf;
}

/// A panel to which a sensor of the model has been attached.
std::shared_ptr<QWidget> attachedPanel(int programId)
{
    const auto bench = std::make_shared<PanelBench>(static_cast<uint8_t>(programId));
    return {bench, bench->panel};
}

/// What the English tool has to show for a Chinese text: the row of the class itself before that of QObject.
/// Behind a text that is a row a number may stand. Null when there is no such row.
QString expectedText(const QTranslator &english, const ShownText &chinese)
{
    static const QRegularExpression number(QStringLiteral("\\d*$"));
    const QString tail = number.match(chinese.text).captured();
    const auto row = [&](const QString &context, const QString &text) {
        return english.translate(context.toUtf8().constData(), text.toUtf8().constData(), nullptr, -1);
    };
    for (const QString &context : chinese.contexts) {
        if (QString whole = row(context, chinese.text); !whole.isNull())
            return whole;
        if (const QString part = row(context, chinese.text.chopped(tail.size())); !part.isNull())
            return part + tail;
    }
    return {};
}

} // namespace

Q_DECLARE_METATYPE(Make)

class tst_translation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Q_INIT_RESOURCE(translations); }

    void screenFollowsTheTable_data()
    {
        QTest::addColumn<Make>("make");
        QTest::newRow("window") << Make(&visitedWindow);
        QTest::newRow("views") << Make(&allViews);
        // One block, cells of its own, a static picture, many gauges, an array.
        for (const int programId : {28, 2, 18, 45, 55})
            QTest::addRow("panel of %d", programId) << Make([programId] { return attachedPanel(programId); });
    }

    void screenFollowsTheTable()
    {
        QFETCH(Make, make);
        const QVector<ShownText> chinese = shownTexts(*make());
        QTranslator english;
        QVERIFY(english.load(QStringLiteral(":/en.qm")));
        QCoreApplication::installTranslator(&english);
        const QVector<ShownText> translated = shownTexts(*make());
        QCOMPARE(translated.size(), chinese.size());
        int rows = 0;
        for (int i = 0; i < chinese.size(); ++i) {
            const QString expected = expectedText(english, chinese.at(i));
            rows += expected.isNull() ? 0 : 1;
            QVERIFY2(expected.isNull() || translated.at(i).text == expected, qPrintable(chinese.at(i).text));
        }
        QVERIFY(rows > 0);
    }
};

QTEST_MAIN(tst_translation)
#include "tst_translation.moc"
