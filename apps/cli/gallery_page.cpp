#include "apps/cli/gallery_page.h"

#include "apps/cli/commands.h"
#include "apps/cli/plate.h"
#include "apps/cli/render_spec.h"
#include "apps/common/error.h"
#include "apps/common/messages.h"
#include "apps/common/text.h"
#include "imageio/atomic_file.h"

#include <QDir>
#include <QFileInfo>
#include <QUrl>

#include <algorithm>
#include <cmath>
#include <map>

namespace lumetra {
namespace {

constexpr auto style = R"(
:root { color-scheme: light dark; --paper: #fff; --panel: #f0f1f4; --ink: #1c2026; --pale: #5b6472;
  --link: #0b5cad; --failed: #b3261e; }
@media (prefers-color-scheme: dark) {
  :root { --paper: #17181b; --panel: #1f2125; --ink: #dfe2e7; --pale: #a3a8b3; --link: #9cc4ff;
    --failed: #ff8a7a; }
}
body { margin: 0; padding: 0 16px 32px; width: max-content; min-width: calc(100vw - 48px);
  background: var(--paper); color: var(--ink); font: 14px/1.45 system-ui, sans-serif; }
header { position: sticky; left: 16px; width: calc(100vw - 48px); overflow-wrap: anywhere; }
h1 { font-size: 22px; margin: 18px 0 2px; }
h2 { font-size: 16px; margin: 26px 0 6px; position: sticky; left: 16px; width: max-content; }
p { margin: 4px 0; }
a { color: var(--link); }
label { display: inline-flex; align-items: center; gap: 8px; margin: 6px 0; }
.legend { list-style: none; display: flex; flex-wrap: wrap; gap: 4px 24px; padding: 0; margin: 8px 0; }
.swatch { display: inline-block; width: 12px; height: 12px; margin-right: 7px; border-radius: 3px;
  border: 1px solid var(--pale); }
.muted { color: var(--pale); }
summary { cursor: pointer; color: var(--failed); }
.list { display: flex; flex-wrap: wrap; gap: 10px; width: calc(100vw - 48px); }
.tile { display: block; width: var(--tile); color: inherit; text-decoration: none; }
.list .tile { content-visibility: auto; contain-intrinsic-size: auto var(--tile) auto calc(var(--tile) + 24px); }
.frame { display: flex; width: 100%; aspect-ratio: 1; overflow: hidden; position: relative;
  background: #0c0d0e; border-radius: 3px; }
.frame img { width: 100%; height: 100%; object-fit: contain; }
.name, .reason { display: block; font-size: 12px; overflow-wrap: anywhere; }
.reason { color: var(--failed); }
.plate .name, .plate .reason { display: none; }
.failed .frame { box-shadow: inset 0 0 0 2px var(--failed); }
.mark { position: absolute; inset: auto 0 0 0; background: #8c1d18; color: #fff; text-align: center;
  font-size: min(12px, var(--tile) / 4); line-height: 1.5; }
a.tile:hover .frame, .tile:target .frame, li:target { outline: 2px solid var(--link); }
a:focus-visible { outline: 3px solid var(--link); outline-offset: 2px; }
.row { display: flex; gap: 6px; margin-bottom: 6px; }
.plate .row { content-visibility: auto; contain-intrinsic-size: auto 600px auto calc(var(--tile) * var(--down) + 2px); }
.head { flex: none; position: sticky; left: 0; width: 28px; background: var(--paper); z-index: 1;
  display: flex; align-items: center; justify-content: center; font-weight: 600; }
.columns { position: sticky; top: 0; background: var(--paper); z-index: 2; padding: 3px 0; }
.columns span, .well { flex: none; width: calc(var(--tile) * var(--across) + 2px * var(--across) - 2px); }
.columns span { text-align: center; font-weight: 600; }
.well { display: flex; flex-wrap: wrap; gap: 2px; min-height: var(--tile); border-radius: 3px;
  background: var(--panel); align-content: flex-start; }
footer { margin-top: 28px; position: sticky; left: 16px; width: max-content; }
@media print {
  :root { color-scheme: light; --paper: #fff; --panel: #fff; --ink: #000; --pale: #444; --link: #000;
    --failed: #b3261e; }
  header, h2, .head, .columns, footer { position: static; }
  .tile, .plate .row { content-visibility: visible !important; }
  .frame, .swatch { print-color-adjust: exact; -webkit-print-color-adjust: exact; }
  body, header, .list { width: auto; min-width: 0; }
  body { padding: 0; }
  label { display: none; }
  .row { gap: 2px; margin-bottom: 2px; break-inside: avoid; }
  .head { width: 18px; }
  .columns span, .well { flex: 1 1 0; width: 0; min-height: 0; gap: 0; }
  .plate .tile { width: calc(100% / var(--across)); break-inside: avoid; }
  .failed .frame { background: none; }
  .plate .mark { display: none; }
}
)";

QString number(std::size_t value) { return QString::number(value); }

/// Texts and attributes.
QString htmlEscaped(const QString& text) { return text.toHtmlEscaped(); }

/// A file as a link from the page has it, whatever letters its name is made of.
QString link(const QString& beside, const QString& file) {
    const QString name = nameBelow(beside, file);
    if (QDir::isAbsolutePath(name)) // on another drive
        return QString::fromLatin1(QUrl::fromLocalFile(name).toEncoded());
    return QString::fromLatin1(name.toUtf8().toPercentEncoding(QByteArrayLiteral("/")));
}

/// What a tile's name and, where it failed, the reason come to, for those who do not see the tile.
QString spokenName(const Tile& tile) {
    return htmlEscaped(tile.problem.isEmpty()
                           ? tile.name
                           : tile.name + QStringLiteral(": failed: ") + tile.problem);
}

/// A link to the image or, where there is none, to the reason in the list of what failed.
QString tileHtml(const Tile& tile, std::size_t place, const QString& beside) {
    const bool isFailed = !tile.problem.isEmpty();
    QString frame;
    if (!tile.thumbnail.isEmpty())
        frame = QStringLiteral("<img src=\"%1\" alt=\"\" loading=\"lazy\" decoding=\"async\">")
                    .arg(link(beside, tile.thumbnail));
    if (isFailed)
        frame += QStringLiteral("<span class=\"mark\">failed</span>");
    QString inside = QStringLiteral("<span class=\"frame\">%1</span><span class=\"name\">%2</span>")
                         .arg(frame, htmlEscaped(tile.name));
    if (isFailed)
        inside += QStringLiteral("<span class=\"reason\">%1</span>").arg(htmlEscaped(tile.problem));
    return QStringLiteral("<a class=\"tile%1\" id=\"t%2\" href=\"%3\" title=\"%4\" "
                          "aria-label=\"%4\">%5</a>\n")
        .arg(isFailed ? QStringLiteral(" failed") : QString(), number(place),
             tile.file.isEmpty() ? QStringLiteral("#f") + number(place) : link(beside, tile.file),
             spokenName(tile), inside);
}

/// The images of a plate, by row and column.
using Plate = std::map<std::pair<int, int>, std::vector<std::size_t>>;

/// What of a plate has images.
struct Extent {
    int firstRow, lastRow, firstColumn, lastColumn;
    std::size_t most = 1; ///< Images in a well.
};

Extent extentOf(const Plate& plate) {
    const auto [row, column] = plate.begin()->first;
    Extent extent{row, row, column, column, 1};
    for (const auto& [well, tiles] : plate) {
        extent.firstRow = std::min(extent.firstRow, well.first);
        extent.lastRow = std::max(extent.lastRow, well.first);
        extent.firstColumn = std::min(extent.firstColumn, well.second);
        extent.lastColumn = std::max(extent.lastColumn, well.second);
        extent.most = std::max(extent.most, tiles.size());
    }
    return extent;
}

/// What a name has before a well, as a heading.
QString plateTitle(QString plate) {
    while (!plate.isEmpty() && !plate.back().isLetterOrNumber())
        plate.chop(1);
    return plate.isEmpty() ? QString() : QStringLiteral("<h2>%1</h2>\n").arg(htmlEscaped(plate));
}

QString plateHtml(const QString& title, const Plate& plate, const std::vector<QString>& tiles) {
    const Extent extent = extentOf(plate);
    const auto across = static_cast<std::size_t>(std::ceil(std::sqrt(double(extent.most))));
    const std::size_t down = (extent.most + across - 1) / across;
    QString html = plateTitle(title) +
                   QStringLiteral("<div class=\"plate\" style=\"--across: %1; --down: %2\">\n"
                                  "<div class=\"row columns\"><b class=\"head\"></b>")
                       .arg(number(across), number(down));
    for (int column = extent.firstColumn; column <= extent.lastColumn; ++column)
        html += QStringLiteral("<span>%1</span>").arg(column);
    html += QStringLiteral("</div>\n");
    for (int row = extent.firstRow; row <= extent.lastRow; ++row) {
        html += QStringLiteral("<div class=\"row\"><b class=\"head\">%1</b>\n").arg(rowName(row));
        for (int column = extent.firstColumn; column <= extent.lastColumn; ++column) {
            html += QStringLiteral("<div class=\"well\">");
            const auto well = plate.find({row, column});
            if (well != plate.end())
                for (const std::size_t place : well->second)
                    html += tiles[place];
            html += QStringLiteral("</div>\n");
        }
        html += QStringLiteral("</div>\n");
    }
    return html + QStringLiteral("</div>\n");
}

QString listHtml(const std::vector<std::size_t>& places, const std::vector<QString>& tiles) {
    QString html = QStringLiteral("<div class=\"list\">\n");
    for (const std::size_t place : places)
        html += tiles[place];
    return html + QStringLiteral("</div>\n");
}

/// Which images stand where.
struct Layout {
    std::map<QString, Plate> plates; ///< By what stands before the well.
    std::vector<std::size_t> others;
};

Layout layoutOf(const Gallery& gallery) {
    QStringList names;
    for (const Tile& tile : gallery.tiles)
        names << tile.name;
    const auto wells =
        gallery.isList ? std::vector<std::optional<Well>>(gallery.tiles.size()) : findWells(names);
    Layout layout;
    for (std::size_t i = 0; i < wells.size(); ++i) {
        if (wells[i])
            layout.plates[wells[i]->plate][{wells[i]->row, wells[i]->column}].push_back(i);
        else
            layout.others.push_back(i);
    }
    return layout;
}

QString mainHtml(const Layout& layout, const std::vector<QString>& tiles) {
    QString html;
    for (const auto& [title, plate] : layout.plates)
        html += plateHtml(title, plate, tiles);
    if (layout.others.empty())
        return html;
    if (!layout.plates.empty())
        html += QStringLiteral("<h2>Not in a well</h2>\n");
    return html + listHtml(layout.others, tiles);
}

QString sizeHtml(int size) {
    return QStringLiteral("<label>Size <input type=\"range\" min=\"24\" max=\"256\" value=\"%1\" "
                          "oninput=\"document.documentElement.style.setProperty('--tile', "
                          "this.value + 'px')\"></label>\n")
        .arg(size);
}

QString legendHtml(const Gallery& gallery) {
    QString html;
    for (const LegendEntry& entry : gallery.legend)
        html += QStringLiteral("<li><span class=\"swatch\" style=\"background: %1\"></span>%2 "
                               "<span class=\"muted\">%3</span></li>\n")
                    .arg(toQt(toHex(entry.colour)),
                         htmlEscaped(entry.name.isEmpty()
                                         ? entry.dye
                                         : entry.name + QStringLiteral(": ") + entry.dye),
                         htmlEscaped(entry.levels));
    if (!html.isEmpty())
        html = QStringLiteral("<ul class=\"legend\">\n%1</ul>\n").arg(html);
    if (!gallery.measured.isEmpty())
        html += QStringLiteral("<p class=\"muted\">%1</p>\n").arg(htmlEscaped(gallery.measured));
    return html;
}

QString problemsHtml(const Gallery& gallery) {
    QString items;
    std::size_t problems = 0;
    for (std::size_t i = 0; i < gallery.tiles.size(); ++i) {
        const Tile& tile = gallery.tiles[i];
        if (tile.problem.isEmpty())
            continue;
        ++problems;
        items += QStringLiteral("<li id=\"f%1\"><a href=\"#t%1\">%2</a>: %3</li>\n")
                     .arg(number(i), htmlEscaped(tile.name), htmlEscaped(tile.problem));
    }
    if (problems == 0)
        return {};
    return QStringLiteral("<details%1><summary>%2 failed</summary>\n<ul>\n%3</ul></details>\n")
        .arg(problems <= 10 ? QStringLiteral(" open") : QString(), number(problems), items);
}

} // namespace

QByteArray galleryPage(const Gallery& gallery, const QString& page) {
    constexpr int tileOfPlate = 80, tileOfList = 144; // CSS pixels
    const QString beside = QFileInfo(page).absolutePath();
    std::vector<QString> tiles;
    for (const Tile& tile : gallery.tiles)
        tiles.push_back(tileHtml(tile, tiles.size(), beside));
    const Layout layout = layoutOf(gallery);
    const int size = layout.plates.empty() ? tileOfList : tileOfPlate;
    const QString title = htmlEscaped(gallery.title);
    QString html = QStringLiteral("<!DOCTYPE html>\n<html lang=\"en\" style=\"--tile: %1px\">\n"
                                  "<head>\n<meta charset=\"utf-8\">\n<meta name=\"viewport\" "
                                  "content=\"width=device-width, initial-scale=1\">\n<title>")
                       .arg(size);
    html += title + QStringLiteral("</title>\n<style>") + QLatin1String(style) +
            QStringLiteral("</style>\n</head>\n<body onbeforeprint=\"for (const list of "
                           "document.querySelectorAll('details')) list.open = true\">\n"
                           "<header>\n<h1>") +
            title + QStringLiteral("</h1>\n<p>") + plural(tiles.size(), QStringLiteral("image")) +
            QStringLiteral("</p>\n");
    html += legendHtml(gallery) + sizeHtml(size) + problemsHtml(gallery);
    html += QStringLiteral("</header>\n<main>\n") + mainHtml(layout, tiles);
    html += QStringLiteral("</main>\n<footer class=\"muted\">Made by lumetra " LUMETRA_VERSION
                           "</footer>\n</body>\n</html>\n");
    return html.toUtf8();
}

int printBroken(const Gallery& gallery) {
    int status = done;
    for (const Tile& tile : gallery.tiles)
        if (tile.isBroken) {
            status = failed;
            printError(tile.problem);
        }
    return status;
}

int writePage(const Gallery& gallery, const OutputOptions& output) {
    writeBytes(output.file, galleryPage(gallery, output.file), existingOf(output));
    const int status = printBroken(gallery);
    const auto problems = std::count_if(gallery.tiles.begin(), gallery.tiles.end(),
                                        [](const Tile& tile) { return !tile.problem.isEmpty(); });
    if (!output.quiet)
        printError(QStringLiteral("%1: %2, %3 of them failed")
                       .arg(output.file, plural(gallery.tiles.size(), QStringLiteral("image")))
                       .arg(problems));
    return status;
}

} // namespace lumetra
