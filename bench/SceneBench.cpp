// Scenes and figures: opening, saving, reading and writing files.
#include "qc/qcFigureFile.h"
#include "qc/qcScene.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <memory>
#include <string>

namespace {

const char* const kScene = SSTR_SOURCE_DIR "/examples/lift_box.json";

void openScene(benchmark::State& state)
{
    for (auto _ : state) {
        const std::unique_ptr<qcScene> scene(qcScene::open(kScene));
        if (!scene) {
            state.SkipWithError("the scene does not open");
            return;
        }
    }
}
BENCHMARK(openScene)->Unit(benchmark::kMillisecond);

void saveScene(benchmark::State& state)
{
    const std::unique_ptr<qcScene> scene(qcScene::open(kScene));
    const std::string target = (std::filesystem::temp_directory_path() / "sstr_bench_scene.json").string();
    if (!scene || !scene->save(target.c_str())) {
        state.SkipWithError("the scene cannot be saved");
        return;
    }
    for (auto _ : state)
        benchmark::DoNotOptimize(scene->save(target.c_str()));
    std::filesystem::remove(target);
}
BENCHMARK(saveScene)->Unit(benchmark::kMillisecond);

void writeAndReadPosedFigure(benchmark::State& state)
{
    const std::unique_ptr<qcFigure> figure(qcFigureFile::read(SSTR_SOURCE_DIR "/figures/human.urdf", nullptr));
    for (auto _ : state) {
        const std::string text = qcFigureFile::posedText(*figure);
        const std::unique_ptr<qcFigure> again(qcFigureFile::readPosedText(text.c_str(), "bench"));
        if (!again) {
            state.SkipWithError("the figure does not read back");
            return;
        }
    }
}
BENCHMARK(writeAndReadPosedFigure)->Unit(benchmark::kMillisecond);

}   // namespace
