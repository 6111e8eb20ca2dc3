// The time step allocates nothing: this executable replaces the global operator new and
// counts what is allocated while a step of 100 bound objects runs.

#include "om_ui_test_support.h"

#include <om_ui/qcar.h>

#include <om_model/car.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

#if defined(__SANITIZE_ADDRESS__)
// The hook interface of the sanitizer runtime, declared here as its header is not
// installed with every compiler.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*malloc_hook)(const volatile void*,
                                                                             std::size_t),
                                                         void (*free_hook)(const volatile void*));
#endif

namespace {
std::atomic<bool> g_counting{false};
std::atomic<long> g_allocations{0};
/// Under AddressSanitizer, malloc (which Qt's containers use) is counted as well.
std::atomic<long> g_mallocs{0};

#if defined(__SANITIZE_ADDRESS__)
void onMalloc(const volatile void*, std::size_t)
{
    if (g_counting.load(std::memory_order_relaxed))
        g_mallocs.fetch_add(1, std::memory_order_relaxed);
}
void onFree(const volatile void*) {}
[[maybe_unused]] const int g_hooks = __sanitizer_install_malloc_and_free_hooks(onMalloc, onFree);
#endif

void* allocate(std::size_t size)
{
    if (g_counting.load(std::memory_order_relaxed))
        g_allocations.fetch_add(1, std::memory_order_relaxed);
    if (void* memory = std::malloc(size == 0 ? 1 : size))
        return memory;
    throw std::bad_alloc();
}
} // namespace

void* operator new(std::size_t size)
{
    return allocate(size);
}

void* operator new[](std::size_t size)
{
    return allocate(size);
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory, std::size_t) noexcept
{
    std::free(memory);
}

namespace {

long allocationsDuring(const std::function<void()>& work)
{
    g_allocations = 0;
    g_mallocs = 0;
    g_counting = true;
    work();
    g_counting = false;
    return g_allocations.load() + g_mallocs.load();
}

TEST(TimeStep, OfAHundredBoundCarsAllocatesNothing)
{
    math_geo::ProjectionPlane plane = om_ui_test::sitePlane();
    om_ui_test::ChannelList channels;
    std::vector<double> latitude, longitude, heading;
    for (int i = 0; i < 1000; ++i) {
        latitude.push_back(48.2 + i * 1e-6);
        longitude.push_back(11.6 + i * 1e-6);
        heading.push_back(i % 360);
    }
    std::vector<std::unique_ptr<overmap_ui::QCar>> cars;
    long emitted = 0;
    QObject receiver;
    for (int i = 0; i < 100; ++i) {
        auto car = std::make_unique<overmap_ui::QCar>(std::make_shared<overmap::Car>(&plane), nullptr);
        car->setLatitudeChannel(channels.add(om_ui_test::makeScalar(100.0, latitude)));
        car->setLongitudeChannel(channels.add(om_ui_test::makeScalar(100.0, longitude)));
        car->setHeadingChannel(channels.add(om_ui_test::makeScalar(100.0, heading)));
        QObject::connect(car.get(), &overmap_ui::QPositionObject::positionChanged, &receiver,
                         [&emitted] { ++emitted; });
        QObject::connect(car.get(), &overmap_ui::QPositionObject::headingChanged, &receiver,
                         [&emitted] { ++emitted; });
        cars.push_back(std::move(car));
    }
    for (auto& car : cars)
        car->updatePositionData(0.0);
    emitted = 0;

    double time = 0.0;
    const long allocations = allocationsDuring([&] {
        for (int step = 1; step <= 10; ++step) {
            time = step * 0.37;
            for (auto& car : cars)
                car->updatePositionData(time);
        }
    });
    EXPECT_EQ(allocations, 0);
    EXPECT_EQ(emitted, 10 * 100 * 2) << "the views were told at each step";
    EXPECT_NEAR(cars.front()->latitude(), 48.2 + 370 * 1e-6, 1e-9);
    EXPECT_DOUBLE_EQ(cars.front()->inputHeading(), 10.0);

    EXPECT_GT(allocationsDuring([&] { cars.front()->poiList()->addPoi(); }), 0) << "the counter counts";
}

} // namespace
