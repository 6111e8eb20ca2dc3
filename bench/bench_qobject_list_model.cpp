// Filling and emptying an object list of up to 100,000 objects: every way in and
// out must cost the same per object at every size (linear, no quadratic step).
// The ratios compare 100,000 objects with 25,000: linear is 4, quadratic 16 (the
// smallest size fits in the caches and would show a step that is not the algorithm's).
#include <qobject_list_model/qobjectlist_model.h>

#include "bench_ratio.h"

#include <memory>
#include <vector>

namespace {

constexpr int SMALL = 12500;
constexpr int LARGE = 100000;

std::vector<std::unique_ptr<QObject>> makeObjects(int n)
{
    std::vector<std::unique_ptr<QObject>> objects;
    objects.reserve(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i)
        objects.push_back(std::make_unique<QObject>());
    return objects;
}

QList<QObject*> pointers(const std::vector<std::unique_ptr<QObject>>& objects)
{
    QList<QObject*> list;
    list.reserve(static_cast<int>(objects.size()));
    for (const auto& o : objects)
        list.append(o.get());
    return list;
}

std::unique_ptr<QObjectListModel> trackedList(const QList<QObject*>& objects)
{
    auto model = std::make_unique<QObjectListModel>();
    model->setTracking(true);
    model->append(objects);
    return model;
}

void finish(benchmark::State& state)
{
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetComplexityN(state.range(0));
}

void BM_AppendOne(benchmark::State& state)
{
    const auto objects = makeObjects(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        QObjectListModel model;
        model.setTracking(state.range(1) != 0);
        for (const auto& o : objects)
            model.append(o.get());
        benchmark::DoNotOptimize(model.size());
        state.PauseTiming();
        model.clearList();
        state.ResumeTiming();
    }
    finish(state);
}

void BM_AppendList(benchmark::State& state)
{
    const auto objects = makeObjects(static_cast<int>(state.range(0)));
    const QList<QObject*> list = pointers(objects);
    for (auto _ : state) {
        QObjectListModel model;
        model.append(list);
        benchmark::DoNotOptimize(model.size());
    }
    finish(state);
}

/// Removes one object at a time: 0 from the front by row, 1 from the back by row,
/// 2 the first object by pointer, 3 with takeAt from the front.
void BM_RemoveOne(benchmark::State& state)
{
    const auto objects = makeObjects(static_cast<int>(state.range(0)));
    const QList<QObject*> list = pointers(objects);
    const int how = static_cast<int>(state.range(1));
    for (auto _ : state) {
        state.PauseTiming();
        auto model_ptr = trackedList(list);
        QObjectListModel& model = *model_ptr;
        state.ResumeTiming();
        for (int n = model.size(); n > 0; --n) {
            switch (how) {
            case 0:
                model.listRemove(0);
                break;
            case 1:
                model.listRemove(n - 1);
                break;
            case 2:
                model.removeItem(model.get(0));
                break;
            default:
                model.takeAt(0);
                break;
            }
        }
        benchmark::DoNotOptimize(model.size());
    }
    finish(state);
}

void BM_RemoveAllAtOnce(benchmark::State& state)
{
    const auto objects = makeObjects(static_cast<int>(state.range(0)));
    const QList<QObject*> list = pointers(objects);
    for (auto _ : state) {
        state.PauseTiming();
        auto model_ptr = trackedList(list);
        QObjectListModel& model = *model_ptr;
        state.ResumeTiming();
        if (state.range(1) == 0)
            model.listRemove(0, model.size());
        else
            model.clearList();
        benchmark::DoNotOptimize(model.size());
    }
    finish(state);
}

/// Tracked objects deleted in list order, each leaving the list on its own.
void BM_TrackedObjectsDie(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        auto objects = makeObjects(n);
        QObjectListModel model;
        model.setTracking(true);
        model.append(pointers(objects));
        state.ResumeTiming();
        objects.clear();
        benchmark::DoNotOptimize(model.size());
    }
    finish(state);
}

void sizes(benchmark::internal::Benchmark* b, std::vector<int64_t> variants)
{
    for (int64_t v : variants)
        for (int n = SMALL; n <= LARGE; n *= 2)
            b->Args({n, v});
    b->Unit(benchmark::kMillisecond)->Complexity(benchmark::oN);
}

BENCHMARK(BM_AppendOne)->Apply([](auto* b) { sizes(b, {0, 1}); }) -> ArgNames({"n", "tracked"});
BENCHMARK(BM_AppendList)->Apply([](auto* b) { sizes(b, {0}); }) -> ArgNames({"n", ""});
BENCHMARK(BM_RemoveOne)->Apply([](auto* b) { sizes(b, {0, 1, 2, 3}); }) -> ArgNames({"n", "how"});
BENCHMARK(BM_RemoveAllAtOnce)->Apply([](auto* b) { sizes(b, {0, 1}); }) -> ArgNames({"n", "clear"});
BENCHMARK(BM_TrackedObjectsDie)->Apply([](auto* b) { sizes(b, {0}); }) -> ArgNames({"n", ""});

} // namespace

int main(int argc, char** argv)
{
    // 100,000 objects against 25,000: linear growth is 4; 6 leaves room for a shared machine.
    std::vector<bench::Ratio> ratios;
    const char* runs[] = {
        "BM_AppendOne/n:%d/tracked:0", "BM_AppendOne/n:%d/tracked:1",     "BM_AppendList/n:%d/",
        "BM_RemoveOne/n:%d/how:0",     "BM_RemoveOne/n:%d/how:1",         "BM_RemoveOne/n:%d/how:2",
        "BM_RemoveOne/n:%d/how:3",     "BM_RemoveAllAtOnce/n:%d/clear:0", "BM_RemoveAllAtOnce/n:%d/clear:1",
        "BM_TrackedObjectsDie/n:%d/"};
    for (const char* run : runs) {
        char large[96];
        char small[96];
        std::snprintf(large, sizeof large, run, LARGE);
        std::snprintf(small, sizeof small, run, 2 * SMALL);
        ratios.push_back({large, small, 6.0});
    }
    return bench::runWithRatios(argc, argv, ratios);
}
