#pragma once

#include <memory>
#include <string>

#include "rest/generated/factory_reset/reset_object_model.h"
#include "rest/model_element.h"
#include "zuva/format/date_time.h"

namespace zuva::server::factory_reset {

/// What a client triggers a factory reset with, and reads its state from. The date of the last reset is kept beside the fields: the
/// field "lastReset" is a copy of it as text.
class ResetObject final : public ModelElement {
 public:
  static constexpr const ElementModel& kModel = kResetObjectModel;

  static std::shared_ptr<ResetObject> Make(std::string name, const ara::rest::Uuid& uuid, const ara::rest::Uri& uri) {
    return MakeElement<ResetObject>(std::move(name), uuid, uri);
  }
  ResetObject(const ara::rest::Uri& uri, const ara::rest::Uuid& uuid, std::string name);

  /// Takes the date. From the second one on the field follows by itself. Any thread.
  void SetLastReset(const zuva::format::DateTime& date);
  /// The object's tree; "lastReset", if the field exists, is the date's own text.
  ara::rest::Pointer<ara::rest::ogm::Object> ToOGM() const override;

  /// The start of the epoch, which an object has before the first report.
  static zuva::format::DateTime NoReset();

 private:
  zuva::format::DateTime lastReset_;  // guarded by the object's lock
};

}  // namespace zuva::server::factory_reset
