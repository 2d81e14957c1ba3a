#include "plotting/window/plot_picture.h"

#include "plotting/window/CurvePlot.h"

#include <QFileInfo>
#include <QSaveFile>
#include <QTemporaryDir>
#include <qwt_legend.h>
#include <qwt_plot_renderer.h>

namespace {

constexpr int kDotsPerInch = 96;
constexpr double kMmPerInch = 25.4;
constexpr QSizeF kSizeMm(1200 * kMmPerInch / kDotsPerInch, 640 * kMmPerInch / kDotsPerInch);

} // namespace

bool isPicturePath(const QString &path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    return suffix == QLatin1String("png") || suffix == QLatin1String("svg");
}

bool savePlotPicture(CurvePlot &plot, const QString &path)
{
    // The renderer does not say whether it could write, so it writes where it can and the result is moved
    // over.
    const QTemporaryDir folder;
    const QString draft = folder.filePath(QStringLiteral("plot.") + QFileInfo(path).suffix().toLower());
    plot.insertLegend(new QwtLegend, QwtPlot::RightLegend);
    QwtPlotRenderer renderer;
    renderer.setDiscardFlag(QwtPlotRenderer::DiscardCanvasFrame);
    renderer.renderDocument(&plot, draft, kSizeMm, kDotsPerInch);
    plot.insertLegend(nullptr);

    QFile drawn(draft);
    QSaveFile file(path);
    if (!drawn.open(QIODevice::ReadOnly) || !file.open(QIODevice::WriteOnly))
        return false;
    const QByteArray picture = drawn.readAll();
    return !picture.isEmpty() && file.write(picture) == picture.size() && file.commit();
}
