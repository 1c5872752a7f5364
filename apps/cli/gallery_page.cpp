#include "apps/cli/gallery_page.h"

#include "apps/cli/plate.h"
#include "apps/common/error.h"
#include "apps/common/text.h"

#include <QDir>
#include <QFileInfo>
#include <QUrl>

#include <algorithm>
#include <cmath>
#include <map>

namespace lumetra {
namespace {

constexpr auto style = R"(
:root { color-scheme: dark; }
body { margin: 0; padding: 0 16px 32px; width: max-content; min-width: calc(100vw - 48px);
  background: #17181b; color: #dfe2e7; font: 14px/1.45 system-ui, sans-serif; }
header { position: sticky; left: 16px; width: calc(100vw - 48px); }
h1 { font-size: 22px; margin: 18px 0 2px; }
h2 { font-size: 16px; margin: 26px 0 6px; position: sticky; left: 16px; width: max-content; }
p { margin: 4px 0; }
a { color: #9cc4ff; }
label { display: inline-flex; align-items: center; gap: 8px; margin: 6px 0; }
.legend { list-style: none; display: flex; flex-wrap: wrap; gap: 4px 24px; padding: 0; margin: 8px 0; }
.swatch { display: inline-block; width: 12px; height: 12px; margin-right: 7px; border-radius: 3px;
  border: 1px solid #666a73; }
.muted { color: #a3a8b3; }
summary { cursor: pointer; color: #ffb4a6; }
.list { display: flex; flex-wrap: wrap; gap: 10px; width: calc(100vw - 48px); }
.tile { display: block; width: var(--tile); color: inherit; text-decoration: none; }
.list .tile { content-visibility: auto; contain-intrinsic-size: auto var(--tile) auto calc(var(--tile) + 24px); }
.frame { display: flex; width: var(--tile); height: var(--tile); overflow: hidden; background: #0c0d0e;
  border-radius: 3px; }
.frame img { width: 100%; height: 100%; object-fit: contain; }
.name { display: block; font-size: 12px; overflow-wrap: anywhere; }
.plate .name { display: none; }
.failed .frame { box-shadow: inset 0 0 0 2px #ff6b57; position: relative; }
.failed .mark { position: absolute; inset: auto 0 0 0; max-height: 100%; overflow: hidden; padding: 2px 5px;
  background: #5c1b12e6; color: #ffe3de; font-size: 11px; line-height: 1.3; overflow-wrap: anywhere; }
a.tile:hover .frame, .tile:target .frame { outline: 2px solid #9cc4ff; }
a:focus-visible { outline: 3px solid #9cc4ff; outline-offset: 2px; }
.row { display: flex; gap: 6px; margin-bottom: 6px; }
.plate .row { content-visibility: auto; contain-intrinsic-size: auto 600px auto calc(var(--tile) * var(--down) + 2px); }
.head { flex: none; position: sticky; left: 0; width: 28px; background: #17181b; z-index: 1;
  display: flex; align-items: center; justify-content: center; font-weight: 600; }
.columns { position: sticky; top: 0; background: #17181b; z-index: 2; padding: 3px 0; }
.columns span, .well { flex: none; width: calc(var(--tile) * var(--across) + 2px * var(--across) - 2px); }
.columns span { text-align: center; font-weight: 600; }
.well { display: flex; flex-wrap: wrap; gap: 2px; min-height: var(--tile); border-radius: 3px;
  background: #1f2125; align-content: flex-start; }
footer { margin-top: 28px; position: sticky; left: 16px; width: max-content; }
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

QString tileHtml(const Tile& tile, std::size_t place, const QString& beside) {
    QString frame;
    if (!tile.thumbnail.isEmpty())
        frame = QStringLiteral("<img src=\"%1\" alt=\"\" loading=\"lazy\" decoding=\"async\">")
                    .arg(link(beside, tile.thumbnail));
    if (!tile.problem.isEmpty())
        frame +=
            QStringLiteral("<span class=\"mark\">failed: %1</span>").arg(htmlEscaped(tile.problem));
    const QString name = htmlEscaped(tile.name);
    const QString inside =
        QStringLiteral("<span class=\"frame\">%1</span><span class=\"name\">%2</span>")
            .arg(frame, name);
    const QString attributes =
        QStringLiteral("class=\"tile%1\" id=\"t%2\" title=\"%3\"")
            .arg(tile.problem.isEmpty() ? QString() : QStringLiteral(" failed"), number(place),
                 tile.problem.isEmpty() ? name
                                        : name + QStringLiteral(": ") + htmlEscaped(tile.problem));
    if (tile.file.isEmpty())
        return QStringLiteral("<span %1>%2</span>\n").arg(attributes, inside);
    return QStringLiteral("<a %1 href=\"%2\" aria-label=\"%3\">%4</a>\n")
        .arg(attributes, link(beside, tile.file), name, inside);
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
        items += QStringLiteral("<li><a href=\"#t%1\">%2</a>: %3</li>\n")
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
                                  "content=\"width=device-width\">\n<title>")
                       .arg(size);
    html += title + QStringLiteral("</title>\n<style>") + QLatin1String(style) +
            QStringLiteral("</style>\n</head>\n<body>\n<header>\n<h1>") + title +
            QStringLiteral("</h1>\n<p>") + plural(tiles.size(), QStringLiteral("image")) +
            QStringLiteral("</p>\n");
    html += legendHtml(gallery) + sizeHtml(size) + problemsHtml(gallery);
    html += QStringLiteral("</header>\n<main>\n") + mainHtml(layout, tiles);
    html += QStringLiteral("</main>\n<footer class=\"muted\">Made by lumetra " LUMETRA_VERSION
                           "</footer>\n</body>\n</html>\n");
    return html.toUtf8();
}

} // namespace lumetra
