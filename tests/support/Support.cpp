// Test support.
#include "Support.h"

#include "NumberText.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

double toleranceScale()
{
    const char* text = std::getenv("SSTR_TEST_TOLERANCE");
    return text ? numberIn<double>(text) : 1.0;
}

}   // namespace

MessageLog::MessageLog()
{
    qcMessages::setSink(
        [](qcMessageKind kind, const char* text, void* data) {
            static_cast<MessageLog*>(data)->messages.push_back({kind, text});
        },
        this);
}

MessageLog::~MessageLog()
{
    qcMessages::setSink(nullptr, nullptr);
}

std::vector<MessageLog::Message> MessageLog::take()
{
    std::vector<Message> taken;
    taken.swap(messages);
    return taken;
}

std::vector<std::string> MessageLog::takeTexts()
{
    std::vector<std::string> texts;
    for (Message& message : take())
        texts.push_back(std::move(message.text));
    return texts;
}

void MessageTest::TearDown()
{
    for (const std::string& text : log.takeTexts())
        ADD_FAILURE() << "unexpected message: " << text;
}

std::array<float, 3> components(const qVector& vector)
{
    return {vector[0], vector[1], vector[2]};
}

double roundingBound(int terms, double sumOfMagnitudes)
{
    constexpr double kUnit = 1.0 / (1 << 23);
    return toleranceScale() * terms * kUnit * sumOfMagnitudes;
}

TemporaryFolder::TemporaryFolder()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "sstr-test-XXXXXX").string();
    if (mkdtemp(pattern.data()))
        folder = pattern;
    else
        ADD_FAILURE() << "no temporary folder can be made";
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

std::string TemporaryFolder::write(const std::string& name, const std::string& content) const
{
    std::ofstream(file(name), std::ios::binary) << content;
    return file(name);
}

std::string contentOf(const std::string& path)
{
    std::ifstream stream(path, std::ios::binary);
    if (!stream)
        ADD_FAILURE() << "cannot read " << path;
    std::ostringstream content;
    content << stream.rdbuf();
    return content.str();
}
