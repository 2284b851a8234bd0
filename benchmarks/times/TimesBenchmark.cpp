// Times and dates, each beside the C library doing the same in the same run.

#include <cstdint>
#include <cstdio>
#include <ctime>
#include <string>

#include <benchmark/benchmark.h>
#include <support/os_toolkit/os_date.h>
#include <vq_client_common/time/ForecastTimesManipulationMP.h>
#include <vq_idl/AdministrationRecordsC.h>

namespace {

// Steps through days and times so that no branch is predicted for ever.
std::int32_t NextTime(std::int32_t t) {
  return (t + 90061) % 1000000;
}

void BM_TimeString(benchmark::State& state) {
  std::int32_t t = 0;
  for (auto _ : state) {
    t = NextTime(t);
    benchmark::DoNotOptimize(ForecastTimesManipulationMP::ConvertTimeToStrWithDays(t, true));
  }
}
BENCHMARK(BM_TimeString);

void BM_TimeStringThroughSnprintf(benchmark::State& state) {
  std::int32_t t = 0;
  for (auto _ : state) {
    t = NextTime(t);
    const int day = t / 86400 - 3;
    char text[32];
    if (day == 0) {
      std::snprintf(text, sizeof text, "%02d:%02d:%02d", t / 3600 % 24, t / 60 % 60, t % 60);
    } else {
      std::snprintf(text, sizeof text, "(%+d)%02d:%02d:%02d", day, t / 3600 % 24, t / 60 % 60,
                    t % 60);
    }
    benchmark::DoNotOptimize(std::string(text));
  }
}
BENCHMARK(BM_TimeStringThroughSnprintf);

// A date from its parts, a day more or less, and its parts again.
struct Parts {
  int year, month, day;
};
Parts StartOf(std::uint32_t i) {
  return {1970 + static_cast<int>(i % 130), 1 + static_cast<int>(i % 12),
          1 + static_cast<int>(i % 28)};
}

void BM_DatePlusOrMinusADay(benchmark::State& state) {
  const os_time_period day(1, 0, 0, 0, 0);
  std::uint32_t i = 0;
  for (auto _ : state) {
    const Parts start = StartOf(++i);
    const os_date from(start.year, start.month, start.day);
    const os_date date = (i & 1U) != 0 ? from + day : from - day;
    Parts parts{date.year(), date.month(), date.day()};
    benchmark::DoNotOptimize(parts);
  }
}
BENCHMARK(BM_DatePlusOrMinusADay);

void BM_DatePlusOrMinusADayThroughTimegm(benchmark::State& state) {
  std::uint32_t i = 0;
  for (auto _ : state) {
    const Parts start = StartOf(++i);
    std::tm broken{};
    broken.tm_year = start.year - 1900;
    broken.tm_mon = start.month - 1;
    broken.tm_mday = start.day;
    const std::time_t moment = timegm(&broken) + ((i & 1U) != 0 ? 86400 : -86400);
    gmtime_r(&moment, &broken);
    Parts parts{broken.tm_year + 1900, broken.tm_mon + 1, broken.tm_mday};
    benchmark::DoNotOptimize(parts);
  }
}
BENCHMARK(BM_DatePlusOrMinusADayThroughTimegm);

// The table of as many data centers, in 24 zones with summer marks.
void BM_ZoneTable(benchmark::State& state) {
  QCSCommAdminSeq records;
  records.length(static_cast<CORBA::ULong>(state.range(0)));
  for (CORBA::ULong i = 0; i < records.length(); ++i) {
    const std::string hour = std::to_string(100 + i % 12).substr(1);
    records[i].m_Name = ("DATACENTER" + std::to_string(i * 7919 % records.length())).c_str();
    records[i].m_TimeZone = ((i % 2 == 0 ? "(GMT+" : "(GMT-") + hour + ":00)").c_str();
    records[i].m_NewDayTime = "07:00";
    records[i].m_Odat = "20240701";
    records[i].m_StartSummerTime = "20240331";
    records[i].m_EndSummerTime = "20241027";
  }
  for (auto _ : state) {
    ForecastTimesManipulationMP times;
    times.Init(os_time_and_date(), false, &records, true);
    benchmark::DoNotOptimize(times.GetOdatMidnightForDc("DATACENTER0"));
  }
}
BENCHMARK(BM_ZoneTable)->Arg(10000)->Unit(benchmark::kMillisecond);

void BM_ConvertTimeToString(benchmark::State& state) {
  QCSCommAdminSeq records;
  records.length(1);
  records[0].m_Name = "DATACENTER";
  ForecastTimesManipulationMP times;
  times.Init(os_time_and_date(), false, &records, false);
  const std::string name = "DATACENTER";
  std::int32_t t = 0;
  for (auto _ : state) {
    t = NextTime(t);
    benchmark::DoNotOptimize(times.ConvertTimeToString(t, name));
  }
}
BENCHMARK(BM_ConvertTimeToString);

}  // namespace

BENCHMARK_MAIN();
