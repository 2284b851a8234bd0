// The table of 10,000 data centers' clocks, in 24 zones with summer marks.

#include <string>

#include <benchmark/benchmark.h>

#include <vq_client_common/time/ForecastTimesManipulationMP.h>
#include <vq_idl/AdministrationRecordsC.h>

namespace {

void ZoneTable(benchmark::State& state) {
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
BENCHMARK(ZoneTable)->Arg(10000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
