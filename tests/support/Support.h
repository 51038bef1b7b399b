// Test support: collecting the host's messages, comparing vectors, rounding bounds, small files.
#pragma once

#include "qc/qVector.h"
#include "qc/qcMessages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

/// Collects the host's messages while it lives.
class MessageLog {
public:
    MessageLog();
    ~MessageLog();
    MessageLog(const MessageLog&) = delete;
    MessageLog& operator=(const MessageLog&) = delete;

    struct Message {
        qcMessageKind kind;
        std::string text;
    };
    /// What came since the last call, and forgets it.
    std::vector<Message> take();
    /// The texts of take().
    std::vector<std::string> takeTexts();

private:
    std::vector<Message> messages;
};

/// A fixture that collects messages; one that the test has not taken fails it.
class MessageTest : public ::testing::Test {
protected:
    void TearDown() override;
    MessageLog log;
};

/// The components of a vector, for matchers: EXPECT_THAT(components(v), ElementsAre(0, -2, 0)).
std::array<float, 3> components(const qVector& vector);

/// How far a sum of `terms` terms in single precision may lie from the exact one:
/// terms · 2^-23 · sum of the terms' magnitudes. SSTR_TEST_TOLERANCE (default 1) scales it; 0 shows
/// the real residuals.
double roundingBound(int terms, double sumOfMagnitudes);

/// A folder of its own for one test, removed with all in it.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string& path() const { return folder; }
    /// The path of a file in it.
    std::string file(const std::string& name) const { return folder + "/" + name; }
    /// Writes a file in it. @return its path
    std::string write(const std::string& name, const std::string& content) const;

private:
    std::string folder;
};

/// The whole content of a file; empty, and a test failure, when it cannot be read.
std::string contentOf(const std::string& path);
