// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "driver/arguments.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "driver/usage_text.h"

namespace ostrafel {

namespace {

class CheckedArguments : public testing::Test {
 protected:
  bool Check(std::vector<std::string> words) {
    words_ = std::move(words);
    std::vector<char*> argv;
    for (std::string& word : words_) argv.push_back(word.data());
    argv.push_back(nullptr);
    testing::internal::CaptureStderr();
    const bool result = CheckArguments(static_cast<int>(words_.size()), argv.data(), &arguments);
    printed = testing::internal::GetCapturedStderr();
    return result;
  }

  Arguments arguments;
  std::string printed;

 private:
  std::vector<std::string> words_;
};

TEST_F(CheckedArguments, ThreeNameActionPathAndUri) {
  ASSERT_TRUE(Check({"Ostrafel", "create", "/tmp/sdata", "/redfish"}));
  EXPECT_STREQ(arguments.action, "create");
  EXPECT_STREQ(arguments.static_data_path, "/tmp/sdata");
  EXPECT_STREQ(arguments.uri, "/redfish");
  EXPECT_STREQ(arguments.file_name, "index.json");
  EXPECT_EQ(printed, "");
}

TEST_F(CheckedArguments, AFourthNamesTheFile) {
  ASSERT_TRUE(Check({"Ostrafel", "update", "d", "/r", "other.json"}));
  EXPECT_STREQ(arguments.file_name, "other.json");
}

TEST_F(CheckedArguments, AnEmptyFourthStandsForTheDefault) {
  ASSERT_TRUE(Check({"Ostrafel", "update", "d", "/r", ""}));
  EXPECT_STREQ(arguments.file_name, "index.json");
}

TEST_F(CheckedArguments, WithoutAnyOnlyTheUsageIsPrinted) {
  EXPECT_FALSE(Check({"Ostrafel"}));
  EXPECT_EQ(printed, kUsageText);
  EXPECT_FALSE(Check({}));
  EXPECT_EQ(printed, kUsageText);
}

TEST_F(CheckedArguments, AnyOtherNumberIsRefused) {
  const std::vector<std::vector<std::string>> cases = {
      {"Ostrafel", "create"},
      {"Ostrafel", "create", "d"},
      {"Ostrafel", "create", "d", "/r", "f", "more"},
      {"Ostrafel", "create", "d", "/r", "f", "more", "still more"},
  };
  for (const auto& words : cases) {
    EXPECT_FALSE(Check(words)) << words.size();
    EXPECT_EQ(printed, std::string("Incorrect arguments number.\n") + kUsageText) << words.size();
  }
}

TEST_F(CheckedArguments, TheFirstThreeMustNotBeEmpty) {
  const std::vector<std::vector<std::string>> cases = {
      {"Ostrafel", "", "d", "/r"},
      {"Ostrafel", "create", "", "/r"},
      {"Ostrafel", "create", "d", ""},
      {"Ostrafel", "", "", "", ""},
  };
  for (const auto& words : cases) {
    EXPECT_FALSE(Check(words));
    EXPECT_EQ(printed,
              std::string("The required property <Action> <StaticDataPath> <URI> should be a "
                          "non-empty string.\n") +
                  kUsageText);
  }
}

}  // namespace

}  // namespace ostrafel
