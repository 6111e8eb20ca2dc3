// The host's command line: what each form of argument yields, and what is refused.

#include <lumero_app/host_options.h>

#include <gtest/gtest.h>

namespace {

struct AcceptedRow
{
    const char* name;
    QStringList args;
    lum::HostOptions expected;
};

lum::HostOptions with(void (*change)(lum::HostOptions&))
{
    lum::HostOptions options;
    change(options);
    return options;
}

class AcceptedArguments : public ::testing::TestWithParam<AcceptedRow>
{};

TEST_P(AcceptedArguments, YieldTheOptions)
{
    const lum::ParsedHostOptions parsed = lum::parseHostOptions(GetParam().args);
    ASSERT_TRUE(parsed.error.isEmpty()) << parsed.error.toStdString();
    const lum::HostOptions& got = parsed.options;
    const lum::HostOptions& want = GetParam().expected;
    EXPECT_EQ(got.setup_path, want.setup_path);
    EXPECT_EQ(got.data_paths, want.data_paths);
    EXPECT_EQ(got.tile_folder, want.tile_folder);
    EXPECT_EQ(got.time, want.time);
    EXPECT_EQ(got.plugin_folder, want.plugin_folder);
    EXPECT_EQ(got.grab_path, want.grab_path);
    EXPECT_EQ(got.quit_after_grab, want.quit_after_grab);
    EXPECT_EQ(got.grab_delay_ms, want.grab_delay_ms);
    EXPECT_EQ(got.window_size, want.window_size);
    EXPECT_EQ(got.report_startup, want.report_startup);
    EXPECT_EQ(got.quit_after_first_frame, want.quit_after_first_frame);
    EXPECT_EQ(got.help, want.help);
}

INSTANTIATE_TEST_SUITE_P(
    HostOptions, AcceptedArguments,
    ::testing::Values(
        AcceptedRow{"nothing_gives_the_defaults", {}, lum::HostOptions{}},
        AcceptedRow{"setup_and_two_recordings_in_order",
                    {"--setup", "s.xml", "--data", "b.csv", "--data=a.gpx"},
                    with([](lum::HostOptions& o) {
                        o.setup_path = "s.xml";
                        o.data_paths = QStringList{"b.csv", "a.gpx"};
                    })},
        AcceptedRow{"tiles_time_and_plugins",
                    {"--tiles", "/t", "--time", "65.5", "--plugins=/p"},
                    with([](lum::HostOptions& o) {
                        o.tile_folder = "/t";
                        o.time = 65.5;
                        o.plugin_folder = "/p";
                    })},
        AcceptedRow{"time_zero_is_a_time", {"--time", "0"}, with([](lum::HostOptions& o) { o.time = 0.0; })},
        AcceptedRow{"grab_and_quit",
                    {"--grab", "x.png", "--quit-after-grab", "--grab-delay", "0", "--size", "200x8192"},
                    with([](lum::HostOptions& o) {
                        o.grab_path = "x.png";
                        o.quit_after_grab = true;
                        o.grab_delay_ms = 0;
                        o.window_size = QSize(200, 8192);
                    })},
        AcceptedRow{"longest_grab_delay", {"--grab-delay", "600000"}, with([](lum::HostOptions& o) {
                        o.grab_delay_ms = 600'000;
                    })},
        AcceptedRow{"start_up_measurement",
                    {"--report-startup", "--quit-after-first-frame"},
                    with([](lum::HostOptions& o) {
                        o.report_startup = true;
                        o.quit_after_first_frame = true;
                    })},
        AcceptedRow{"help", {"--help"}, with([](lum::HostOptions& o) { o.help = true; })}),
    [](const ::testing::TestParamInfo<AcceptedRow>& info) { return std::string(info.param.name); });

struct RefusedRow
{
    const char* name;
    QStringList args;
    const char* error_part;
};

class RefusedArguments : public ::testing::TestWithParam<RefusedRow>
{};

TEST_P(RefusedArguments, SayWhy)
{
    const lum::ParsedHostOptions parsed = lum::parseHostOptions(GetParam().args);
    EXPECT_TRUE(parsed.error.contains(QString::fromLatin1(GetParam().error_part)))
        << "error: " << parsed.error.toStdString();
}

INSTANTIATE_TEST_SUITE_P(
    HostOptions, RefusedArguments,
    ::testing::Values(
        RefusedRow{"unknown_option", {"--colour", "red"}, "colour"},
        RefusedRow{"missing_value", {"--setup"}, "setup"},
        RefusedRow{"stray_argument", {"file.csv"}, "Unexpected argument: file.csv"},
        RefusedRow{"empty_recording", {"--data", ""}, "--data needs a file"},
        RefusedRow{"setup_twice", {"--setup", "a", "--setup", "b"}, "--setup given more than once"},
        RefusedRow{"time_not_a_number", {"--time", "soon"}, "--time needs seconds"},
        RefusedRow{"time_negative", {"--time", "-1"}, "--time needs seconds"},
        RefusedRow{"time_infinite", {"--time", "inf"}, "--time needs seconds"},
        RefusedRow{"delay_negative", {"--grab-delay", "-5"}, "--grab-delay"},
        RefusedRow{"delay_too_long", {"--grab-delay", "600001"}, "--grab-delay"},
        RefusedRow{"size_without_x", {"--size", "800"}, "--size"},
        RefusedRow{"size_too_small", {"--size", "199x600"}, "--size"},
        RefusedRow{"size_too_large", {"--size", "800x8193"}, "--size"},
        RefusedRow{"quit_without_grab", {"--quit-after-grab"}, "--quit-after-grab needs --grab"}),
    [](const ::testing::TestParamInfo<RefusedRow>& info) { return std::string(info.param.name); });

TEST(HostOptions, UsageNamesEveryOption)
{
    const QString usage = lum::hostUsageText();
    for (const char* option : {"--setup FILE", "--data FILE", "--tiles DIR", "--time T", "--plugins DIR",
                               "--grab FILE", "--quit-after-grab", "--size WxH", "--report-startup"})
        EXPECT_TRUE(usage.contains(QString::fromLatin1(option))) << option;
}

} // namespace
