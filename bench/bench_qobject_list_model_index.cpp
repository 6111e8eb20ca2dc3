// Look-up by name through the name index must not grow with the list: the ratio
// compares 100,000 objects with 1,000 (a hash look-up; cache misses allow some rise).
// The scan without the index is shown beside it for scale.
#include <qobject_list_model/qobject_list_model_index_by_name.h>
#include <qobject_list_model/qobjectlist_model.h>

#include "bench_ratio.h"

#include <memory>
#include <vector>

namespace {

struct NamedList
{
    explicit NamedList(int n, bool indexed)
    {
        objects.reserve(static_cast<std::size_t>(n));
        QList<QObject*> pointers;
        for (int i = 0; i < n; ++i) {
            objects.push_back(std::make_unique<QObject>());
            objects.back()->setObjectName(QStringLiteral("object %1").arg(i));
            pointers.append(objects.back().get());
        }
        model.append(pointers);
        if (indexed) {
            index = std::make_unique<QObjectListModelIndexByName>(&model);
            model.setNameIndex(index.get());
        }
        // Names spread over the whole list, visited in a fixed scattered order.
        for (int i = 0; i < 1024; ++i)
            probes.append(objects[static_cast<std::size_t>((i * 7919) % n)]->objectName());
    }

    std::vector<std::unique_ptr<QObject>> objects;
    QObjectListModel model;
    std::unique_ptr<QObjectListModelIndexByName> index;
    QStringList probes;
};

void lookUp(benchmark::State& state, bool indexed)
{
    NamedList list(static_cast<int>(state.range(0)), indexed);
    int i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(list.model.indexOfName(list.probes.at(i)));
        i = (i + 1) & 1023;
    }
}

void BM_IndexedLookupByName(benchmark::State& state)
{
    lookUp(state, true);
}

void BM_ScannedLookupByName(benchmark::State& state)
{
    lookUp(state, false);
}

} // namespace

BENCHMARK(BM_IndexedLookupByName)->Arg(1000)->Arg(100000)->Unit(benchmark::kNanosecond);
BENCHMARK(BM_ScannedLookupByName)->Arg(1000)->Arg(100000)->Unit(benchmark::kNanosecond);

int main(int argc, char** argv)
{
    return bench::runWithRatios(argc, argv,
                                {{"BM_IndexedLookupByName/100000", "BM_IndexedLookupByName/1000", 3.0}});
}
