// Throughput of the live grade on a 1280 × 720 BGRA frame, single thread,
// and the time to read `.cube` files.
//
// The frame is smooth gradients with mild noise, like graded video rather
// than white noise, so cube reads have the locality real frames give them.
#include "grading/cube_lut.h"
#include "grading/grade_filter_engine.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <unistd.h>

namespace {

using namespace tavrelune;

constexpr int frameWidth = 1280;
constexpr int frameHeight = 720;

std::vector<std::uint8_t> makeFrame()
{
    std::vector<std::uint8_t> frame(frameWidth * frameHeight * 4);
    std::mt19937 random(1);
    std::uniform_int_distribution<int> noise(-6, 6);
    auto level = [&](double value) {
        return static_cast<std::uint8_t>(std::clamp(static_cast<int>(value) + noise(random), 0, 255));
    };
    for (int y = 0; y < frameHeight; ++y) {
        for (int x = 0; x < frameWidth; ++x) {
            std::uint8_t* pixel = &frame[(y * frameWidth + x) * 4];
            pixel[0] = level(255.0 * y / frameHeight);
            pixel[1] = level(128 + 100 * std::sin(x * 0.01 + y * 0.004));
            pixel[2] = level(255.0 * x / frameWidth);
            pixel[3] = 255;
        }
    }
    return frame;
}

// A smooth look: a gentle S-curve per channel with a little cross-talk.
CubeLUT makeLook(std::int64_t size)
{
    auto entries = std::make_shared<std::vector<float>>(static_cast<std::size_t>(size * size * size * 4));
    float* out = entries->data();
    const double top = static_cast<double>(size - 1);
    auto curve = [](double v) { return v * v * (3 - 2 * v); };
    for (std::int64_t b = 0; b < size; ++b)
        for (std::int64_t g = 0; g < size; ++g)
            for (std::int64_t r = 0; r < size; ++r, out += 4) {
                const double rv = r / top, gv = g / top, bv = b / top;
                out[0] = static_cast<float>(0.9 * curve(rv) + 0.1 * gv);
                out[1] = static_cast<float>(curve(gv));
                out[2] = static_cast<float>(0.85 * curve(bv) + 0.1 * rv + 0.05);
                out[3] = 1;
            }
    return CubeLUT{size, std::move(entries)};
}

void gradeFrames(benchmark::State& state, const GradeValues& grade, const std::optional<CubeLUT>& lut,
                 GradeFilterEngine::Kernels kernels = GradeFilterEngine::Kernels::fastest)
{
    const std::vector<std::uint8_t> frame = makeFrame();
    std::vector<std::uint8_t> out(frame.size());
    const ConstBgraPixels source(frame.data(), frameWidth, frameHeight, frameWidth * 4);
    const BgraPixels target{out.data(), frameWidth, frameHeight, frameWidth * 4};
    GradeFilterEngine engine(kernels);
    engine.apply(source, target, grade, lut);  // compile outside the timing
    for (auto _ : state) {
        engine.apply(source, target, grade, lut);
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.counters["Mpixel/s"] = benchmark::Counter(
        static_cast<double>(state.iterations()) * frameWidth * frameHeight / 1e6, benchmark::Counter::kIsRate);
}

const GradeValues fullGrade{.exposure = 0.35, .contrast = 1.15, .saturation = 1.25, .temperature = 40};

void fullGradeWithCube33(benchmark::State& state) { gradeFrames(state, fullGrade, makeLook(33)); }
void fullGradeWithoutCube(benchmark::State& state) { gradeFrames(state, fullGrade, std::nullopt); }
void cubeOnly33(benchmark::State& state) { gradeFrames(state, GradeValues{}, makeLook(33)); }
// The largest cube kept: its 8 MB of prepared entries outgrow the caches.
void cubeOnly64(benchmark::State& state) { gradeFrames(state, GradeValues{}, makeLook(64)); }
void fullGradeWithCube33Portable(benchmark::State& state)
{
    gradeFrames(state, fullGrade, makeLook(33), GradeFilterEngine::Kernels::portable);
}
void fullGradeWithoutCubePortable(benchmark::State& state)
{
    gradeFrames(state, fullGrade, std::nullopt, GradeFilterEngine::Kernels::portable);
}

// A slider drag: the grade changes on every frame, so the cube is re-folded.
void fullGradeWithCube33ChangingEveryFrame(benchmark::State& state)
{
    const std::vector<std::uint8_t> frame = makeFrame();
    std::vector<std::uint8_t> out(frame.size());
    const ConstBgraPixels source(frame.data(), frameWidth, frameHeight, frameWidth * 4);
    const BgraPixels target{out.data(), frameWidth, frameHeight, frameWidth * 4};
    const std::optional<CubeLUT> lut = makeLook(33);
    GradeFilterEngine engine;
    GradeValues grade = fullGrade;
    for (auto _ : state) {
        grade.contrast = grade.contrast > 1.3 ? 1.1 : grade.contrast + 0.001;
        engine.apply(source, target, grade, lut);
        benchmark::ClobberMemory();
    }
    state.counters["Mpixel/s"] = benchmark::Counter(
        static_cast<double>(state.iterations()) * frameWidth * frameHeight / 1e6, benchmark::Counter::kIsRate);
}

// A `.cube` file as colour tools write them: a header and six decimals.
std::string writeCubeFile(std::int64_t size)
{
    const std::string path = (std::filesystem::temp_directory_path()
                              / ("tavrelune-bench-" + std::to_string(getpid()) + "-" + std::to_string(size) + ".cube"))
                                 .string();
    const CubeLUT look = makeLook(size);
    std::ofstream file(path);
    file << "TITLE \"bench\"\nLUT_3D_SIZE " << size << "\nDOMAIN_MIN 0 0 0\nDOMAIN_MAX 1 1 1\n";
    char line[64];
    for (std::size_t i = 0; i < look.entries->size(); i += 4) {
        std::snprintf(line, sizeof line, "%.6f %.6f %.6f\n", (*look.entries)[i], (*look.entries)[i + 1],
                      (*look.entries)[i + 2]);
        file << line;
    }
    return path;
}

void parseCube(benchmark::State& state)
{
    const std::string path = writeCubeFile(state.range(0));
    const QString name = QString::fromStdString(path);
    for (auto _ : state) {
        const CubeLUT lut = CubeLUT::load(name);
        benchmark::DoNotOptimize(lut.entries.get());
    }
    std::filesystem::remove(path);
}

}  // namespace

BENCHMARK(fullGradeWithCube33)->Unit(benchmark::kMillisecond);
BENCHMARK(fullGradeWithoutCube)->Unit(benchmark::kMillisecond);
BENCHMARK(cubeOnly33)->Unit(benchmark::kMillisecond);
BENCHMARK(cubeOnly64)->Unit(benchmark::kMillisecond);
BENCHMARK(fullGradeWithCube33ChangingEveryFrame)->Unit(benchmark::kMillisecond);
BENCHMARK(fullGradeWithCube33Portable)->Unit(benchmark::kMillisecond);
BENCHMARK(fullGradeWithoutCubePortable)->Unit(benchmark::kMillisecond);
BENCHMARK(parseCube)->Arg(33)->Arg(65)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
