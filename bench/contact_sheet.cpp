// Draws every view of the family, at rest and under a press, all pages, in both languages, on one page:
//
//     contact_sheet sheet.png [dark]
//
// It is how a person looks over a change to the family.

#include "bench/offscreen.h"
#include "tests/support/box_answer.h"
#include "views/class_finger.h"
#include "views/models/view_factory.h"
#include "views/models/view_layout.h"

#include <QApplication>
#include <QHash>
#include <QPainter>
#include <QSet>
#include <QStyleFactory>
#include <QTabWidget>
#include <QTranslator>
#include <QVector>

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

namespace {

constexpr QSize kPictureSize(290, 218);
constexpr int kGap = 6;
constexpr int kCaptionHeight = 18;
constexpr int kSheetWidth = 4800;

/// Pictures of one view: at rest, then every page under a press.
using Strip = QVector<QPixmap>;

struct Block
{
    QString name;
    QVector<Strip> strips; // one a language

    /// Room for one picture: a view that needs more than its share gets it.
    QSize cell() const
    {
        QSize largest;
        for (const Strip &strip : strips) {
            for (const QPixmap &picture : strip)
                largest = largest.expandedTo(picture.size());
        }
        return largest + QSize(kGap, kGap);
    }
};

/// Numbers of the program ids that lead to a view of their own, and 91 for the view whose own id has another.
QVector<int> shownIds()
{
    QVector<int> ids;
    for (int id = 0; id < 255; ++id) {
        const ViewLayout *layout = findViewLayout(static_cast<uint8_t>(id));
        if (layout != nullptr)
            ids.append(id == 64 ? 91 : id);
    }
    return ids;
}

std::unique_ptr<QWidget> build(int id)
{
    BoxAnswer answer;
    if (id == 102 || id == 111)
        answer.expect(QStringLiteral("传感器类型错误"), QStringLiteral("未识别传感器类型%1").arg(id));
    class_finger *finger = makeView(static_cast<uint8_t>(id), nullptr);
    finger->setShowData(true);
    return std::unique_ptr<QWidget>(dynamic_cast<QWidget *>(finger));
}

/// A press that is hardest at one channel and fades around it.
void press(class_finger *view)
{
    constexpr int kMostChannels = 31;
    const float range = view->info != nullptr ? view->info->range : 30.0F;
    QVector<float> forces;
    for (int i = 0; i < kMostChannels; ++i)
        forces.append(range * static_cast<float>(std::exp(-0.06 * (i - 7) * (i - 7))));
    for (int i = 0; i < kMostChannels; ++i)
        view->setPress(static_cast<unsigned char>(i), forces.at(i), range);
    view->setPressNList(forces, range);
    for (int i = 0; i < 15; ++i) {
        const auto force = static_cast<float>(2.4 + (i * 7) % 19);
        view->setYdds(static_cast<unsigned char>(i), force, force * 0.7F,
                      static_cast<unsigned short>((40 + i * 75) % 360));
    }
    for (unsigned char i = 0; i < 8; ++i)
        view->setData(i, 1200U + 77U * i);
    view->setSProx(0, 180000);
    view->setSProx(1, 120000);
    view->setMProx(0, 90000);
}

QPixmap picture(QWidget *view)
{
    view->resize(kPictureSize);
    return view->grab();
}

Strip strip(QWidget *view)
{
    Strip pictures{picture(view)};
    press(dynamic_cast<class_finger *>(view));
    auto *pages = view->findChild<QTabWidget *>(QStringLiteral("tabWidget"));
    const int count = pages != nullptr ? pages->count() : 1;
    for (int page = 0; page < count; ++page) {
        if (pages != nullptr)
            pages->setCurrentIndex(page);
        pictures.append(picture(view));
    }
    return pictures;
}

void addLanguage(QVector<Block> &blocks)
{
    const QVector<int> ids = shownIds();
    blocks.resize(ids.size());
    for (int i = 0; i < ids.size(); ++i) {
        const std::unique_ptr<QWidget> view = build(ids.at(i));
        blocks[i].name = view->objectName();
        blocks[i].strips.append(strip(view.get()));
    }
}

QSize blockSize(const Block &block)
{
    return {block.strips.constFirst().size() * block.cell().width() + kGap,
            block.strips.size() * block.cell().height() + kCaptionHeight};
}

void drawBlock(QPainter &painter, const Block &block, QPoint corner)
{
    painter.drawText(corner + QPoint(0, kCaptionHeight - 5), block.name);
    const QSize cell = block.cell();
    for (int language = 0; language < block.strips.size(); ++language) {
        const Strip &pictures = block.strips.at(language);
        for (int i = 0; i < pictures.size(); ++i)
            painter.drawPixmap(corner + QPoint(i * cell.width(), kCaptionHeight + language * cell.height()),
                               pictures.at(i));
    }
}

/// Corners of the blocks in lines from left to right; the last one is the lower right corner of the whole.
QVector<QPoint> flow(const QVector<Block> &blocks)
{
    QVector<QPoint> corners;
    QPoint next(kGap, kGap);
    int lineHeight = 0;
    for (const Block &block : blocks) {
        const QSize size = blockSize(block);
        if (next.x() + size.width() > kSheetWidth) {
            next = QPoint(kGap, next.y() + lineHeight + kGap);
            lineHeight = 0;
        }
        corners.append(next);
        next.rx() += size.width() + kGap;
        lineHeight = std::max(lineHeight, size.height());
    }
    corners.append({kSheetWidth, next.y() + lineHeight + kGap});
    return corners;
}

QImage sheet(const QVector<Block> &blocks)
{
    const QVector<QPoint> corners = flow(blocks);
    QImage image(corners.constLast().x(), corners.constLast().y(), QImage::Format_RGB32);
    image.fill(QApplication::palette().color(QPalette::Mid));
    QPainter painter(&image);
    painter.setPen(QApplication::palette().color(QPalette::WindowText));
    for (int i = 0; i < blocks.size(); ++i)
        drawBlock(painter, blocks.at(i), corners.at(i));
    return image;
}

/// The most frequent colours first, so that no surface changes its colour, and then a frequent one of each
/// kind, so that none is drawn in one that is far from its own.
QVector<QRgb> paletteOf(const QHash<QRgb, int> &counts)
{
    constexpr int kMostColours = 256;
    constexpr int kSurfaces = 64;
    constexpr QRgb kKind = 0xF8F8F8;
    QList<QRgb> colours = counts.keys();
    // Equally frequent ones in an order of their own, so that a view that has not changed is the same in
    // every sheet.
    std::sort(colours.begin(), colours.end(), [&counts](QRgb one, QRgb other) {
        return std::make_pair(-counts.value(one), one) < std::make_pair(-counts.value(other), other);
    });
    QVector<QRgb> table;
    QSet<QRgb> kinds;
    for (const QRgb colour : qAsConst(colours)) {
        if (table.size() < kMostColours && (table.size() < kSurfaces || !kinds.contains(colour & kKind)))
            table.append(colour);
        kinds.insert(colour & kKind);
    }
    return table;
}

/// The image in 256 colours: a third of the file.
QImage withFewColours(const QImage &image)
{
    QHash<QRgb, int> counts;
    for (int y = 0; y < image.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x)
            ++counts[line[x]];
    }
    return image.convertToFormat(QImage::Format_Indexed8, paletteOf(counts),
                                 Qt::ThresholdDither | Qt::AvoidDither);
}

QPalette darkPalette()
{
    QPalette palette(QColor(53, 53, 53), QColor(42, 42, 42));
    palette.setColor(QPalette::Base, QColor(35, 35, 35));
    palette.setColor(QPalette::Highlight, QColor(42, 130, 218));
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(role, QColor(225, 225, 225));
    return palette;
}

} // namespace

int main(int argc, char *argv[])
{
    drawOffscreenByDefault();
    QApplication app(argc, argv);
    Q_INIT_RESOURCE(translations);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() < 2)
        qFatal("usage: contact_sheet sheet.png [dark]");
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    if (arguments.value(2) == QLatin1String("dark"))
        QApplication::setPalette(darkPalette());

    QVector<Block> blocks;
    addLanguage(blocks);
    QTranslator english;
    if (!english.load(QStringLiteral(":/en.qm")))
        qFatal("no English table");
    QApplication::installTranslator(&english);
    addLanguage(blocks);
    const QImage image = withFewColours(sheet(blocks));
    return image.save(arguments.at(1)) ? 0 : 1;
}
