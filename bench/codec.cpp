#include <cstdint>
#include <cstdlib>
#include <utility>
#include <vector>

#include "bench/measure.h"
#include "bench/value_controls.h"
#include "binding/serialization/serializer.h"
#include "model/records_charging_management_core.h"

// Seventeen value controls to bytes and back: the codec against a loop written by hand for this one record and these bytes.
namespace {

namespace cmc = ylt::services::chargingmanagementcore::datatypes;
namespace codec = xr::com::someip::serialization;
using Record = cmc::DT_valueControls_struct;
using Bytes = std::vector<unsigned char>;

constexpr codec::Serialization_properties kProperties{};

void Put(unsigned char*& out, std::uint32_t number) {
  *out++ = static_cast<unsigned char>(number >> 24U);
  *out++ = static_cast<unsigned char>(number >> 16U);
  *out++ = static_cast<unsigned char>(number >> 8U);
  *out++ = static_cast<unsigned char>(number);
}

template <class T>
void Put(unsigned char*& out, unsigned id, const qe::com::optional<T>& member) {
  if (!member.has_value()) return;
  *out++ = 0x20;
  *out++ = static_cast<unsigned char>(id);
  Put(out, static_cast<std::uint32_t>(*member));
}

void EncodeByHand(Bytes& bytes, const std::vector<Record>& controls) {
  std::size_t body = 0;
  for (const auto& c : controls) {
    const auto members = static_cast<std::size_t>(c.currentValue.has_value()) + c.maxValue.has_value() + c.minValue.has_value() +
                         c.unitPercent.has_value() + c.unitDistance.has_value() + c.unitTime.has_value() + c.resolution.has_value() +
                         c.restrictionReason.has_value() + c.type.has_value() + c.specialState.has_value();
    body += 4 + 6 * members;
  }
  bytes.resize(4 + body);
  auto* out = bytes.data();
  Put(out, static_cast<std::uint32_t>(body));
  for (const auto& c : controls) {
    auto* const length = out;
    out += 4;
    Put(out, 1, c.currentValue);
    Put(out, 2, c.maxValue);
    Put(out, 3, c.minValue);
    Put(out, 4, c.unitPercent);
    Put(out, 5, c.unitDistance);
    Put(out, 6, c.unitTime);
    Put(out, 7, c.resolution);
    Put(out, 8, c.restrictionReason);
    Put(out, 9, c.type);
    Put(out, 10, c.specialState);
    auto* at = length;
    Put(at, static_cast<std::uint32_t>(out - length - 4));
  }
}

std::uint32_t Take(const unsigned char* in) {
  return std::uint32_t{in[0]} << 24U | std::uint32_t{in[1]} << 16U | std::uint32_t{in[2]} << 8U | std::uint32_t{in[3]};
}

template <class T>
void Take(qe::com::optional<T>& member, const unsigned char* in) {
  member = static_cast<T>(Take(in));
}

std::vector<Record> DecodeByHand(const Bytes& bytes) {
  std::vector<Record> controls;
  const unsigned char* in = bytes.data();
  const auto* const end = in + 4 + Take(in);
  if (end > in + bytes.size()) std::abort();
  in += 4;
  while (end - in >= 4) {
    const auto* const last = in + 4 + Take(in);
    if (last > end) std::abort();
    in += 4;
    auto& c = controls.emplace_back();
    for (; last - in >= 6; in += 6) {
      if ((in[0] & 0x70U) != 0x20U) std::abort();
      switch (in[1]) {
        case 1:
          Take(c.currentValue, in + 2);
          break;
        case 2:
          Take(c.maxValue, in + 2);
          break;
        case 3:
          Take(c.minValue, in + 2);
          break;
        case 4:
          Take(c.unitPercent, in + 2);
          break;
        case 5:
          Take(c.unitDistance, in + 2);
          break;
        case 6:
          Take(c.unitTime, in + 2);
          break;
        case 7:
          Take(c.resolution, in + 2);
          break;
        case 8:
          Take(c.restrictionReason, in + 2);
          break;
        case 9:
          Take(c.type, in + 2);
          break;
        case 10:
          Take(c.specialState, in + 2);
          break;
        default:
          std::abort();
      }
    }
    if (in != last) std::abort();
  }
  return controls;
}

template <class T>
void Keep(T& value) {
  asm volatile("" : : "g"(&value) : "memory");
}

}  // namespace

int main() {
  bench::PrintHead();
  const auto controls = bench::ValueControls();
  Bytes bytes;
  EncodeByHand(bytes, controls);
  Bytes other;
  codec::serialize(other, controls, kProperties);
  if (bytes != other || DecodeByHand(bytes) != controls || codec::deserialize<Record>(bytes, kProperties) != controls) std::abort();

  // Taken in turn, so that both meet the machine in the same moods.
  double encode = 0, encodeFloor = 0, decode = 0, decodeFloor = 0;
  for (int turn = 0; turn < 10; ++turn) {
    const auto best = [turn](double& figure, auto&& work) {
      const double now = bench::BestNanoseconds(5, 5000, work);
      if (turn == 0 || now < figure) figure = now;
    };
    best(encode, [&] {
      Bytes out;
      codec::serialize(out, controls, kProperties);
      Keep(out);
    });
    best(encodeFloor, [&] {
      Bytes out;
      EncodeByHand(out, controls);
      Keep(out);
    });
    best(decode, [&] {
      auto records = codec::deserialize<Record>(bytes, kProperties);
      Keep(records);
    });
    best(decodeFloor, [&] {
      auto records = DecodeByHand(bytes);
      Keep(records);
    });
  }
  bench::PrintRow("encode 17 value controls / loop by hand", "ns", encode, encodeFloor, "<= 1.1");
  bench::PrintRow("decode 17 value controls / loop by hand", "ns", decode, decodeFloor, "<= 1.1");
}
