// The English table against the whole tool: nothing in it that nobody asks for, nothing on the screen that it
// should have translated.

#include "app/Widget.h"
#include "engine/sensor_ts.h"
#include "panel/fingerForm.h"
#include "protocol/finger_info.h"
#include "tests/support/box_answer.h"
#include "views/class_finger.h"
#include "views/models/view_factory.h"

#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTranslator>
#include <QXmlStreamReader>
#include <QtTest>
#include <QtWidgets>

#include <functional>
#include <memory>

namespace {

using Make = std::function<std::shared_ptr<QWidget>()>;

constexpr auto kTable = TACTILE_SOURCE_DIR "/app/translations/en.ts";

/// A text as it is looked up: context and source.
using TextKey = QPair<QString, QString>;

/// Translations of a translation source file, "" for texts that have none.
QMap<TextKey, QString> readTranslationFile(const QString &path)
{
    QMap<TextKey, QString> rows;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return rows;
    QXmlStreamReader xml(&file);
    TextKey key;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == QLatin1String("name")) {
            key.first = xml.readElementText();
        } else if (xml.name() == QLatin1String("source")) {
            key.second = xml.readElementText();
            rows.insert(key, {});
        } else if (xml.name() == QLatin1String("translation")) {
            rows.insert(key, xml.readElementText());
        }
    }
    return rows;
}

/// The English table, which remembers what it was asked for.
class RecordingTranslator : public QTranslator
{
public:
    RecordingTranslator() { m_english.load(QStringLiteral(":/en.qm")); }

    bool isEmpty() const override { return false; }
    QString translate(const char *context, const char *sourceText, const char *disambiguation,
                      int n) const override
    {
        m_asked.insert({QString::fromUtf8(context), QString::fromUtf8(sourceText)});
        return m_english.translate(context, sourceText, disambiguation, n);
    }
    const QSet<TextKey> &asked() const { return m_asked; }

private:
    QTranslator m_english;
    mutable QSet<TextKey> m_asked;
};

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

/// What the code and the forms ask for literally.
QSet<TextKey> textsInSources()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("found.ts"));
    QStringList arguments = {QStringLiteral("-silent"), QStringLiteral("-locations"), QStringLiteral("none")};
    for (const char *room :
         {"app", "link", "engine", "views", "recording", "panel", "monitor", "update", "tools"})
        arguments << QStringLiteral(TACTILE_SOURCE_DIR "/") + QLatin1String(room);
    arguments << QStringLiteral("-I") << QStringLiteral(TACTILE_SOURCE_DIR) << QStringLiteral("-ts") << file;
    if (QProcess::execute(QStringLiteral(TACTILE_LUPDATE), arguments) != 0)
        return {};
    const QList<TextKey> keys = readTranslationFile(file).keys();
    return {keys.begin(), keys.end()};
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
    auto panel = std::make_shared<fingerForm>(uint8_t{0}, uint8_t{0x61});
    sensor_ts sensor;
    sensor.infIdx = 0;
    sensor.addr = 0x61;
    sensor.prg = static_cast<uint8_t>(programId);
    panel->sl_connectedFinger(0, 0x61, sensor);
    return panel;
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
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
        Q_INIT_RESOURCE(translations);
    }

    void everyRowIsAsked()
    {
        RecordingTranslator english;
        QCoreApplication::installTranslator(&english);
        visitedWindow();
        BoxAnswer boxes;
        for (const int withoutRow : {102, 102, 111}) // 103 has the view of 102
            boxes.expect(QStringLiteral("传感器类型错误"),
                         QStringLiteral("未识别传感器类型%1").arg(withoutRow));
        QWidget shelf;
        for (int programId = 0; programId < 256; ++programId)
            makeView(static_cast<uint8_t>(programId), &shelf);
        QVERIFY2(boxes.satisfied(), qPrintable(boxes.report()));

        const QSet<TextKey> literal = textsInSources();
        QVERIFY(!literal.isEmpty());
        QStringList unasked;
        const auto table = readTranslationFile(QString::fromUtf8(kTable));
        QVERIFY(!table.isEmpty());
        for (auto row = table.keyBegin(); row != table.keyEnd(); ++row) {
            if (!literal.contains(*row) && !english.asked().contains(*row))
                unasked << row->first + QLatin1Char('/') + row->second;
        }
        QVERIFY2(unasked.isEmpty(), qPrintable(unasked.join(QLatin1Char(10))));
    }

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
        RecordingTranslator english;
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
