// How the window is put together, and what is kept of it.

#include "apps/viewer/window.h"

#include "apps/common/colour_table.h"
#include "apps/common/failure.h"
#include "apps/viewer/canvas.h"
#include "apps/viewer/channel_panel.h"
#include "apps/viewer/colour_bar.h"
#include "apps/viewer/course_view.h"
#include "apps/viewer/custom_dyes_dialog.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QDir>
#include <QDockWidget>
#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSettings>
#include <QSlider>
#include <QStandardPaths>
#include <QStatusBar>
#include <QStyle>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

namespace apps {
namespace {

QString ownDyesFile() {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation);
    QDir().mkpath(folder);
    return folder + QStringLiteral("/dyes.ini");
}

} // namespace

Window::Window() {
    setAcceptDrops(true);
    resize(1360, 900);
    makeCentre();
    actions_ = std::make_unique<Actions>(*this, *canvas_);
    makeDocks();
    makeToolBar();
    makeStatusBar();
    connectViewer();
    connectFileActions();
    connectFrameActions();
    connectViewActions();
    connectChannelActions();
    restore();
    showSource();
    connect(&second_, &QTimer::timeout, this, &Window::tick);
    second_.start(1000);
    sinceTick_.start();
    sinceFrame_.start();
}

Window::~Window() {
    hide(); // fields that lose the focus may still have something to say to the model
}

QWidget* Window::makeMessageBar() {
    messageBar_ = new QFrame(this);
    messageBar_->setFrameShape(QFrame::StyledPanel);
    messageBar_->setAutoFillBackground(true);
    QPalette colours(QColor(0xfd, 0xe8, 0xc8)); // dark on bright in every palette
    colours.setColor(QPalette::WindowText, QColor(0x3a, 0x28, 0x08));
    messageBar_->setPalette(colours);
    message_ = new QLabel(messageBar_);
    message_->setWordWrap(true);
    message_->setTextFormat(Qt::PlainText);
    message_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* close = new QToolButton(messageBar_);
    close->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton));
    close->setAutoRaise(true);
    close->setAccessibleName(QStringLiteral("Close the message"));
    connect(close, &QToolButton::clicked, messageBar_, &QWidget::hide);
    auto* row = new QHBoxLayout(messageBar_);
    row->addWidget(message_, 1);
    row->addWidget(close, 0, Qt::AlignTop);
    messageBar_->hide();
    return messageBar_;
}

QWidget* Window::makePageBar() {
    pageBar_ = new QWidget(this);
    page_ = new QSlider(Qt::Horizontal, pageBar_);
    page_->setAccessibleName(QStringLiteral("Page"));
    pageText_ = new QLabel(pageBar_);
    auto* row = new QHBoxLayout(pageBar_);
    row->setContentsMargins(8, 2, 8, 2);
    row->addWidget(new QLabel(QStringLiteral("Page"), pageBar_));
    row->addWidget(page_, 1);
    row->addWidget(pageText_);
    connect(page_, &QSlider::valueChanged, this, [this](int page) { viewer_.turnTo(page); });
    return pageBar_;
}

void Window::makeCentre() {
    auto* centre = new QWidget(this);
    canvas_ = new Canvas(centre);
    canvas_->setHint(
        QStringLiteral("Drop the files of your channels here,\nopen them with Ctrl+O,\n"
                       "or start the simulated camera with F3"));
    colourBar_ = new ColourBar(centre);
    colourBar_->hide();
    auto* row = new QHBoxLayout;
    row->setSpacing(0);
    row->addWidget(canvas_, 1);
    row->addWidget(colourBar_);
    auto* column = new QVBoxLayout(centre);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(makeMessageBar());
    column->addLayout(row, 1);
    column->addWidget(makePageBar());
    setCentralWidget(centre);
}

void Window::makeDocks() {
    const auto addDock = [this](const QString& title, QWidget* content, Qt::DockWidgetArea area,
                                Act act) {
        auto* dock = new QDockWidget(title, this);
        dock->setObjectName(title);
        dock->setWidget(content);
        addDockWidget(area, dock);
        QAction& action = (*actions_)[act];
        action.setChecked(true);
        connect(&action, &QAction::triggered, dock, &QDockWidget::setVisible);
        connect(dock->toggleViewAction(), &QAction::toggled, &action, &QAction::setChecked);
        return dock;
    };
    panel_ = new ChannelPanel(viewer_.model(), this);
    course_ = new CourseView(statistics_, this);
    auto* channels =
        addDock(QStringLiteral("Channels"), panel_, Qt::RightDockWidgetArea, Act::channelPanel);
    auto* times =
        addDock(QStringLiteral("Course of times"), course_, Qt::BottomDockWidgetArea, Act::course);
    times->hide();
    (*actions_)[Act::course].setChecked(false);
    resizeDocks({channels}, {380}, Qt::Horizontal);
    setCorner(Qt::BottomRightCorner, Qt::RightDockWidgetArea);
}

void Window::makeToolBar() {
    auto* bar = addToolBar(QStringLiteral("Tools"));
    bar->setObjectName(QStringLiteral("Tools"));
    bar->setMovable(false);
    bar->setToolButtonStyle(Qt::ToolButtonTextOnly);
    const auto add = [&](Act act, const char* text) {
        (*actions_)[act].setIconText(QString::fromLatin1(text));
        bar->addAction(&(*actions_)[act]);
    };
    add(Act::open, "Open");
    add(Act::saveAs, "Save");
    bar->addSeparator();
    add(Act::run, "Run");
    add(Act::single, "Single");
    rate_ = new QDoubleSpinBox(bar);
    rate_->setRange(0.1, 100);
    rate_->setDecimals(1);
    rate_->setValue(viewer_.rate());
    rate_->setSuffix(QStringLiteral(" frames/s"));
    rate_->setKeyboardTracking(false);
    rate_->setAccessibleName(QStringLiteral("Frames a second"));
    bar->addWidget(rate_);
    bar->addSeparator();
    for (const Act act : {Act::fit, Act::actualSize, Act::legend, Act::scaleBar, Act::pseudo})
        bar->addAction(&(*actions_)[act]);
    bar->addSeparator();
    table_ = new QComboBox(bar);
    table_->setIconSize({72, 14});
    table_->setAccessibleName(QStringLiteral("Table of colours"));
    table_->addItem(QStringLiteral("From a file…"));
    for (const QString& name : colourTableNames())
        addTable(name);
    bar->addWidget(table_);
}

void Window::makeStatusBar() {
    const auto add = [this](int stretch) {
        auto* label = new QLabel(this);
        statusBar()->addPermanentWidget(label, stretch);
        return label;
    };
    samples_ = add(1);
    gamma_ = add(0);
    zoom_ = add(0);
    pace_ = add(0);
    pace_->setAccessibleName(QStringLiteral("Frames and milliseconds"));
}

void Window::setOwnDyes(const QMap<QString, QColor>& dyes) {
    ownDyes_ = dyes;
    viewer_.model().setCustomDyes(dyes);
    try {
        if (dyes.isEmpty())
            QFile::remove(ownDyesFile());
        else
            writeCustomDyes(dyes, ownDyesFile());
    } catch (const Failure& failure) {
        showProblem(failure.text());
    }
}

void Window::restore() {
    const QSettings kept;
    restoreGeometry(kept.value(QStringLiteral("geometry")).toByteArray());
    restoreState(kept.value(QStringLiteral("state")).toByteArray());
    pixelSize_ = kept.value(QStringLiteral("pixelSize"), 0).toDouble();
    rate_->setValue(kept.value(QStringLiteral("rate"), viewer_.rate()).toDouble());
    chosenTable_ = TableChoice{}.table;
    useTable(kept.value(QStringLiteral("table"), chosenTable_).toString());
    for (const Act act : {Act::legend, Act::gray, Act::keepSettings})
        (*actions_)[act].setChecked(
            kept.value(QStringLiteral("choice%1").arg(static_cast<int>(act)),
                       act == Act::keepSettings)
                .toBool());
    viewer_.keepSettings((*actions_)[Act::keepSettings].isChecked());
    if (!QFileInfo::exists(ownDyesFile()))
        return;
    try {
        ownDyes_ = readCustomDyes(ownDyesFile());
        viewer_.model().setCustomDyes(ownDyes_);
    } catch (const Failure& failure) {
        showProblem(failure.text());
    }
}

void Window::keep() {
    QSettings kept;
    kept.setValue(QStringLiteral("geometry"), saveGeometry());
    kept.setValue(QStringLiteral("state"), saveState());
    kept.setValue(QStringLiteral("pixelSize"), pixelSize_);
    kept.setValue(QStringLiteral("rate"), rate_->value());
    kept.setValue(QStringLiteral("table"), chosenTable_);
    for (const Act act : {Act::legend, Act::gray, Act::keepSettings})
        kept.setValue(QStringLiteral("choice%1").arg(static_cast<int>(act)),
                      (*actions_)[act].isChecked());
}

void Window::closeEvent(QCloseEvent* event) {
    keep();
    viewer_.close();
    event->accept();
}

} // namespace apps
