// The time sheet window over a sheet of 100,000 rows, launched as the application launches
// (the real delegate, the real files), on Qt's offscreen platform: the memory the window
// takes beyond the model, opening it, a header click that re-sorts until the table has
// repainted, scrolling a page, adding an entry from the fields with the file written, and
// one data() call at the top, middle and end of the sheet.
#include <benchmark/benchmark.h>
#include <stdlib.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTableView>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>

#include "bench/tkBenchProcess.h"
#include "bench/tkQtBenchMain.h"
#include "bench/tkTimeSheetBenchData.h"
#include "platform/tkUserInfoPosix.h"
#include "preferences/tkPaths.h"
#include "preferences/tkPreferences.h"
#include "timesheet/tkTimeSheet.h"
#include "timesheet/tkUndoManager.h"
#include "ui/tkCLTAppDelegate.h"
#include "ui/tkTSUIQt.h"
#include "ui/tkTimeSheetDataSource.h"

namespace {

constexpr int kRows = 100000;

void writeFile(const std::filesystem::path& path, const std::string& text) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
}

// A home with the preferences and the sheet, removed at exit; the time sheet window is
// built closed, as when the user last closed it, so that each benchmark opens its own.
void makeHome() {
    std::string pattern =
        (std::filesystem::temp_directory_path() / "tkwindowbench.XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) {
        std::abort();
    }
    static const std::filesystem::path home(pattern);
    ::setenv("HOME", home.c_str(), 1);
    ::setenv("XDG_DATA_HOME", (home / "data").c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", (home / "config").c_str(), 1);
    setUserInfoSource([] { return std::string("Bench User"); }, posixDataFolder);
    const std::filesystem::path folder = home / "data" / "Tekamo";
    writeFile(folder / "Chronolet Preferences.txt",
              "<tkPreferences><timesheetOpen>false</timesheetOpen></tkPreferences>");
    writeFile(folder / "Bench User's Time Sheet.txt", generatedTimeSheetText(kRows));
    std::atexit([] {
        std::error_code error;
        std::filesystem::remove_all(home, error);
    });
}

void launch() {
    static tkCLTAppDelegate* delegate = [] {
        makeHome();
        auto* launched = new tkCLTAppDelegate();
        launched->applicationDidFinishLaunching();
        return launched;
    }();
    if (delegate->terminated() || tkTimeSheet::instance().rowCount() != kRows) {
        std::abort();
    }
    // From here on a new window shows itself, as at a launch with the time sheet open.
    tkPreferences::instance().setTimeSheetOpen(true);
}

// Counts the paint events of one widget.
class PaintCounter : public QObject {
  public:
    explicit PaintCounter(QWidget* widget) : _widget(widget) { widget->installEventFilter(this); }
    ~PaintCounter() override { _widget->removeEventFilter(this); }
    int paints = 0;

  protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            ++paints;
        }
        return false;
    }

  private:
    QWidget* _widget;
};

// Runs the action, then the event loop until the widget has painted; false if it never does.
bool paintedAfter(QWidget* widget, const std::function<void()>& action) {
    PaintCounter counter(widget);
    action();
    QElapsedTimer waited;
    waited.start();
    while (counter.paints == 0) {
        if (waited.elapsed() > 10000) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    }
    return true;
}

QWidget* rowsViewport(tkTSUIQt& window) {
    return window.tableView()->viewport();
}

// A new window, which shows itself, once its table has painted.
std::unique_ptr<tkTSUIQt> openedWindow(benchmark::State& state) {
    auto window = std::make_unique<tkTSUIQt>();
    if (!paintedAfter(rowsViewport(*window), [] {})) {
        state.SkipWithError("the table never painted");
    }
    return window;
}

// The window the action benchmarks share: open, a table of 30 rows or so in view.
tkTSUIQt& sharedWindow() {
    static tkTSUIQt* window = [] {
        tkTSUIQt* ui = tkCLTAppDelegate::timeSheetUI();
        ui->resize(900, 640);
        paintedAfter(rowsViewport(*ui), [ui] { ui->show(); });
        return ui;
    }();
    return *window;
}

// Registered first: the resident memory that one more window takes, shown and painted and
// scrolled through a few pages, beyond the 100,000 rows the model holds already. Qt's
// widgets are in use already (the timer window and the first time sheet window were built
// at the launch), so this is the window's own.
void BM_WindowMemoryBeyondModel(benchmark::State& state) {
    launch();
    double megabytes = -1;
    for (auto _ : state) {
        const double before = residentBytes();
        std::unique_ptr<tkTSUIQt> window = openedWindow(state);
        QScrollBar* scroll = window->tableView()->verticalScrollBar();
        for (int page = 0; page < 5; ++page) {
            paintedAfter(rowsViewport(*window),
                         [scroll] { scroll->triggerAction(QAbstractSlider::SliderPageStepAdd); });
        }
        megabytes = (residentBytes() - before) / (1024.0 * 1024.0);
        state.PauseTiming();
        window.reset();
        state.ResumeTiming();
    }
    state.counters["window_MiB"] = megabytes;
    state.counters["goal_MiB"] = 20;
}
BENCHMARK(BM_WindowMemoryBeyondModel)->Iterations(1)->Unit(benchmark::kMillisecond);

// From the window's construction to its table painted: what opening it adds to a launch.
void BM_OpenWindow(benchmark::State& state) {
    launch();
    for (auto _ : state) {
        std::unique_ptr<tkTSUIQt> window = openedWindow(state);
        state.PauseTiming();
        window.reset();
        QCoreApplication::processEvents();
        state.ResumeTiming();
    }
    state.counters["goal_ms"] = 50;
}
BENCHMARK(BM_OpenWindow)->Iterations(5)->Unit(benchmark::kMillisecond);

// A click on a column's header that re-sorts the 100,000 rows, until the table has
// repainted; the file is rewritten within, as after every change. Alternates between two
// columns, so every click sorts anew.
void BM_HeaderClickResort(benchmark::State& state) {
    launch();
    tkTSUIQt& window = sharedWindow();
    QHeaderView* header = window.tableView()->horizontalHeader();
    int column = tkTimeSheetDataSource::columnOfKey("employee");
    for (auto _ : state) {
        const QPointF at(header->sectionViewportPosition(column) + 5, 5);
        const bool painted = paintedAfter(rowsViewport(window), [header, at] {
            QMouseEvent press(QEvent::MouseButtonPress, at, header->viewport()->mapToGlobal(at),
                              Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
            QMouseEvent release(QEvent::MouseButtonRelease, at, header->viewport()->mapToGlobal(at),
                                Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
            QCoreApplication::sendEvent(header->viewport(), &press);
            QCoreApplication::sendEvent(header->viewport(), &release);
        });
        state.PauseTiming();
        if (!painted ||
            tkTimeSheet::instance().sortBy() != tkTimeSheetDataSource::columnKey(column) ||
            tkTimeSheet::instance().isDirty()) {
            state.SkipWithError("the click did not sort, save and repaint");
            break;
        }
        column = column == 2 ? 5 : 2;
        state.ResumeTiming();
    }
    state.counters["goal_ms"] = 150;
}
BENCHMARK(BM_HeaderClickResort)->Iterations(10)->Unit(benchmark::kMillisecond);

// One page further down, until the table has repainted; back to the top at the end.
void BM_ScrollPage(benchmark::State& state) {
    launch();
    tkTSUIQt& window = sharedWindow();
    QScrollBar* scroll = window.tableView()->verticalScrollBar();
    for (auto _ : state) {
        if (!paintedAfter(rowsViewport(window), [scroll] {
                scroll->triggerAction(QAbstractSlider::SliderPageStepAdd);
            })) {
            state.SkipWithError("the table never painted");
            break;
        }
        if (scroll->value() == scroll->maximum()) {
            state.PauseTiming();
            scroll->setValue(0);
            QCoreApplication::processEvents();
            state.ResumeTiming();
        }
    }
    state.counters["goal_ms"] = 16;
}
BENCHMARK(BM_ScrollPage)->Unit(benchmark::kMillisecond);

void typeKey(QWidget* widget, Qt::Key key, const QString& text) {
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, text);
    QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, text);
    QCoreApplication::sendEvent(widget, &press);
    QCoreApplication::sendEvent(widget, &release);
}

// A description typed into its field (untimed), then Return: the entry goes in at its
// sorted place, the sheet's file is rewritten, and the table repaints. Undone untimed.
void BM_AddEntryFromFields(benchmark::State& state) {
    launch();
    tkTSUIQt& window = sharedWindow();
    auto* description = window.findChild<QLineEdit*>(QStringLiteral("descriptionField"));
    tkTimeSheet& sheet = tkTimeSheet::instance();
    for (auto _ : state) {
        state.PauseTiming();
        typeKey(description, Qt::Key_X, QStringLiteral("x"));
        state.ResumeTiming();
        const bool painted = paintedAfter(rowsViewport(window), [description] {
            typeKey(description, Qt::Key_Return, QStringLiteral("\r"));
        });
        state.PauseTiming();
        if (!painted || sheet.rowCount() != kRows + 1 || sheet.isDirty()) {
            state.SkipWithError("the entry was not added, saved and shown");
            break;
        }
        sheet.undoManager().undo();
        QCoreApplication::processEvents();
        state.ResumeTiming();
    }
    state.counters["goal_ms"] = 30;
}
BENCHMARK(BM_AddEntryFromFields)->Iterations(20)->Unit(benchmark::kMillisecond);

// One cell's text as the table asks for it, at the first, middle and last row, in the date
// column (converted to the user's form) and the description column: the same cost anywhere.
void BM_DataCall(benchmark::State& state) {
    launch();
    const tkTimeSheetDataSource& model = *sharedWindow().dataSource();
    const QModelIndex cell =
        model.index(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(model.data(cell, Qt::DisplayRole));
    }
}
BENCHMARK(BM_DataCall)->ArgsProduct({{0, kRows / 2, kRows - 1}, {0, 5}});

}  // namespace

int main(int argc, char** argv) {
    const std::string runtime = "/tmp/tk-window-bench-" + std::to_string(::getpid());
    std::filesystem::create_directories(runtime);
    std::filesystem::permissions(runtime, std::filesystem::perms::owner_all);
    setenv("XDG_RUNTIME_DIR", runtime.c_str(), 1);
    const int result = runQtBenchmarks(argc, argv, [] { tkCLTAppDelegate::closeAllWindows(); });
    std::filesystem::remove_all(runtime);
    return result;
}
