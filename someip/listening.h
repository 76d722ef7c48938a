#pragma once

#include <memory>
#include <vector>

#include <boost/variant/get.hpp>

#include "someip/texts.h"

#include "ara/log/logging.h"
#include "xr/com/exceptions.h"

/// The algorithms that the listeners of both services share.
namespace trov::someip {

/// Follows the list of offered instances: the first appearance creates the proxy, later changes of the list only tell of loss and return.
/// `incomplete` is the caller's, false at first: true while a first appearance has thrown on its way. The next list then completes it.
template <class Wrapper, class Handles, class OnFirst, class OnLost, class OnReturn>
void FollowService(Wrapper& wrapper, Handles& handles, const ara::log::Logger& logger, bool& incomplete, OnFirst&& onFirst, OnLost&& onLost,
                   OnReturn&& onReturn) {
  logger.LogInfo() << "OnServiceFound  step 1 reached...";
  if (handles.empty()) {
    if (!wrapper.IsProxyNull()) onLost();
    logger.LogInfo() << "OnServiceFound No service available";
    return;
  }
  logger.LogInfo() << "OnServiceFound  step 2 reached...";
  const bool first = wrapper.IsProxyNull();
  if (first || incomplete) {
    incomplete = true;
    auto handle = handles.front();
    if (first) wrapper.CreateServiceProxy(handle);
    logger.LogInfo() << "OnServiceFound  step 3 reached...";
    onFirst();
    incomplete = false;
    if (!first) onReturn();  // the service may have been lost meanwhile
  } else {
    onReturn();
    logger.LogInfo() << "OnServiceFound  step 3 not reached...";
  }
}

/// One run of a receive handler: takes all samples that wait and passes each record on, oldest first, so that the newest wins.
template <class R, class Wrapper, class PassOn>
void HandleSamples(Wrapper& wrapper, const ara::log::Logger& logger, const NotificationRow& row, PassOn&& passOn) {
  logger.LogInfo() << row.first;
  if (row.needsProxy && wrapper.IsProxyNull()) return;  // before Update, so without Cleanup
  wrapper.Update(R::id);
  const auto cached = wrapper.GetCachedSamples(R::id);
  const auto& samples = boost::get<typename R::Samples>(cached);
  if (samples.empty()) {
    logger.LogInfo() << row.empty;
    return;
  }
  logger.LogInfo() << row.count << samples.size() << "elements in the CachedSamples...";  // no blank before "elements", on purpose
  for (const auto& sample : samples) {
    for (const auto& record : *sample) passOn(record);
  }
  wrapper.Cleanup(R::id);
}

/// How a cycle of gets begins, and how it ends when something is thrown out of it.
struct FetchTexts {
  std::string_view notFound, entered, getting, lost, exception, unknown;
};

/// One cycle of gets. Whatever a get throws ends the cycle here, told in one line; the resources behind it wait for the next one.
template <class Wrapper, class Gets>
void Fetch(Wrapper& wrapper, const ara::log::Logger& logger, const FetchTexts& texts, Gets&& gets) {
  if (wrapper.IsProxyNull()) {
    logger.LogInfo() << texts.notFound;
    return;
  }
  logger.LogInfo() << texts.entered;
  logger.LogInfo() << texts.getting;
  try {
    wrapper.PrepareGets();
    gets();
  } catch (const xr::com::Service_not_available_exception& e) {
    logger.LogInfo() << texts.lost << e.what();
  } catch (const std::exception& e) {
    logger.LogInfo() << texts.exception << e.what();
  } catch (...) {
    logger.LogInfo() << texts.unknown;
  }
}

}  // namespace trov::someip
