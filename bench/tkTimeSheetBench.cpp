// The time sheet file is rewritten whole at every change, so its costs grow with a user's
// years of entries. Each cost is measured over generated sheets of 1,000, 10,000 and 100,000
// rows, with the growth fitted (none may grow faster than n log n):
//  - the resident memory that a read sheet takes per row, in a fresh process;
//  - reading a file text into an empty sheet, with the process's peak resident size;
//  - building the whole text, as after an edit of a row;
//  - adding one entry at its sorted place and the text that the save then writes;
//  - a re-sort by each key, and its undo.
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <memory>
#include <string>

#include "bench/tkBenchProcess.h"
#include "bench/tkTimeSheetBenchData.h"
#include "records/tkRecord.h"
#include "records/tkRecordText.h"
#include "timesheet/tkTimeSheet.h"
#include "timesheet/tkUndoManager.h"

namespace {

double peakResidentMegabytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024.0;  // kilobytes on Linux
}

std::unique_ptr<tkTimeSheet> filledSheet(int64_t rows) {
    auto sheet = std::make_unique<tkTimeSheet>();
    sheet->readTabbedText(generatedTimeSheetText(rows));
    return sheet;
}

// Resident memory after the read minus before, per row, with the text that the first save
// writes made: the state that a user works in. Measured in a child that has done nothing
// else, so that no memory freed by earlier work is reused.
void BM_MemoryPerRow(benchmark::State& state) {
    const int64_t rows = state.range(0);
    double bytesPerRow = -1;
    for (auto _ : state) {
        const ChildReport child = inChild(1, [rows](int fd) {
            const std::string text = generatedTimeSheetText(rows);
            const double before = residentBytes();
            tkTimeSheet sheet;
            sheet.readTabbedText(text);
            benchmark::DoNotOptimize(sheet.fileText().data());
            report(fd, {sheet.rowCount() == rows ? (residentBytes() - before) / rows : -1.0});
        });
        if (child.values.empty() || child.values[0] < 0) {
            state.SkipWithError("the child did not read the rows");
            break;
        }
        bytesPerRow = child.values[0];
    }
    state.counters["bytes_per_row"] = bytesPerRow;
}
BENCHMARK(BM_MemoryPerRow)->Arg(100000)->Iterations(1)->Unit(benchmark::kMillisecond);

// Registered early, so that the process's peak resident size is that of this reading.
void BM_ReadTabbedText(benchmark::State& state) {
    const std::string text = generatedTimeSheetText(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        auto sheet = std::make_unique<tkTimeSheet>();
        state.ResumeTiming();
        sheet->readTabbedText(text);
        state.PauseTiming();
        sheet.reset();
        state.ResumeTiming();
    }
    state.SetComplexityN(state.range(0));
    state.counters["peak_rss_MB"] = peakResidentMegabytes();
}
BENCHMARK(BM_ReadTabbedText)
    ->RangeMultiplier(10)
    ->Range(1000, 100000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity();

// The whole text built anew, as after an edit of a row's record.
void BM_TabbedText(benchmark::State& state) {
    auto sheet = filledSheet(state.range(0));
    for (auto _ : state) {
        sheet->recordAtRow(0)->noteEdited();
        benchmark::DoNotOptimize(sheet->fileText().data());
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_TabbedText)
    ->RangeMultiplier(10)
    ->Range(1000, 100000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity();

// One entry in the middle of the dates, then the whole text, as the save after every add
// writes it. The entry is taken out again untimed, so the sheet keeps its size.
void BM_AddEntryAndWrite(benchmark::State& state) {
    auto sheet = filledSheet(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        std::shared_ptr<tkRecord> record =
            fromTabLine("6/15/19\t01:30:00\tE3\t1042-1\tDEV\tbenchmark entry");
        state.ResumeTiming();
        sheet->addEntry(record);
        benchmark::DoNotOptimize(sheet->fileText().data());
        state.PauseTiming();
        sheet->undoManager().undo();
        state.ResumeTiming();
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_AddEntryAndWrite)
    ->RangeMultiplier(10)
    ->Range(1000, 100000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity();

// From date order to the key; undone untimed, so every round sorts the same rows.
void BM_SortBy(benchmark::State& state, const char* key) {
    auto sheet = filledSheet(state.range(0));
    for (auto _ : state) {
        sheet->setSortBy(key);
        state.PauseTiming();
        sheet->undoManager().undo();
        state.ResumeTiming();
    }
    state.SetComplexityN(state.range(0));
}

void BM_UndoSortBy(benchmark::State& state, const char* key) {
    auto sheet = filledSheet(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        sheet->setSortBy(key);
        state.ResumeTiming();
        sheet->undoManager().undo();
    }
    state.SetComplexityN(state.range(0));
}

#define TK_SORT_BENCHMARKS(name, key)           \
    BENCHMARK_CAPTURE(BM_SortBy, name, key)     \
        ->RangeMultiplier(10)                   \
        ->Range(1000, 100000)                   \
        ->Unit(benchmark::kMillisecond)         \
        ->Complexity();                         \
    BENCHMARK_CAPTURE(BM_UndoSortBy, name, key) \
        ->RangeMultiplier(10)                   \
        ->Range(1000, 100000)                   \
        ->Unit(benchmark::kMillisecond)         \
        ->Complexity()

TK_SORT_BENCHMARKS(date, "date");
TK_SORT_BENCHMARKS(duration, "duration");
TK_SORT_BENCHMARKS(employee, "employee");
TK_SORT_BENCHMARKS(job_number, "job number");
TK_SORT_BENCHMARKS(fee_code, "fee code");
TK_SORT_BENCHMARKS(description, "description");
TK_SORT_BENCHMARKS(off, "off");

}  // namespace
