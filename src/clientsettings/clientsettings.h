#pragma once

#include <cstdint>
#include <string>

namespace bk_observer {

/// What a display client asks of its settings record; the engine gives the values no meaning.
enum class ClientSettingsOperation : std::uint8_t { None, Create, Update, Delete };

/// The domain in which a display client draws its data.
enum class DomainType : std::uint8_t { Time, Frequency, Spectrogram, Persistence, Scalogram };

/// A plain record with which a display client describes its axes and spectrum options. The
/// checking engine exports it and does not use it. Every field has a getter and a setter that
/// copy the value; none of them throws. Not synchronised: one thread at a time.
class ClientSettings {
 public:
  double getTMin() const { return tMin; }
  void setTMin(double value) { tMin = value; }
  double getTMax() const { return tMax; }
  void setTMax(double value) { tMax = value; }
  double getFMin() const { return fMin; }
  void setFMin(double value) { fMin = value; }
  double getFMax() const { return fMax; }
  void setFMax(double value) { fMax = value; }
  double getFreqBeta() const { return freqBeta; }
  void setFreqBeta(double value) { freqBeta = value; }
  double getFreqRBW() const { return freqRBW; }
  void setFreqRBW(double value) { freqRBW = value; }
  double getFreqMaxSampleRate() const { return freqMaxSampleRate; }
  void setFreqMaxSampleRate(double value) { freqMaxSampleRate = value; }
  double getFreqYBuffer() const { return freqYBuffer; }
  void setFreqYBuffer(double value) { freqYBuffer = value; }
  double getYMin() const { return yMin; }
  void setYMin(double value) { yMin = value; }
  double getYMax() const { return yMax; }
  void setYMax(double value) { yMax = value; }
  double getWidth() const { return width; }
  void setWidth(double value) { width = value; }
  double getHeight() const { return height; }
  void setHeight(double value) { height = value; }
  double getCanvasWidth() const { return canvasWidth; }
  void setCanvasWidth(double value) { canvasWidth = value; }
  double getCanvasHeight() const { return canvasHeight; }
  void setCanvasHeight(double value) { canvasHeight = value; }
  double getTimeResolution() const { return timeResolution; }
  void setTimeResolution(double value) { timeResolution = value; }
  double getOverlap() const { return overlap; }
  void setOverlap(double value) { overlap = value; }
  double getSpectrogramPowMin() const { return spectrogramPowMin; }
  void setSpectrogramPowMin(double value) { spectrogramPowMin = value; }
  double getSpectrogramPowMax() const { return spectrogramPowMax; }
  void setSpectrogramPowMax(double value) { spectrogramPowMax = value; }
  double getMagnitudeMin() const { return magnitudeMin; }
  void setMagnitudeMin(double value) { magnitudeMin = value; }
  double getMagnitudeMax() const { return magnitudeMax; }
  void setMagnitudeMax(double value) { magnitudeMax = value; }
  double getPersistenceDensityMin() const { return persistenceDensityMin; }
  void setPersistenceDensityMin(double value) { persistenceDensityMin = value; }
  double getPersistenceDensityMax() const { return persistenceDensityMax; }
  void setPersistenceDensityMax(double value) { persistenceDensityMax = value; }
  double getVoicesPerOctave() const { return voicesPerOctave; }
  void setVoicesPerOctave(double value) { voicesPerOctave = value; }
  double getTimeBandWidth() const { return timeBandWidth; }
  void setTimeBandWidth(double value) { timeBandWidth = value; }
  std::uint32_t getPowBins() const { return powBins; }
  void setPowBins(std::uint32_t value) { powBins = value; }
  bool getReassignmentStatus() const { return reassignmentStatus; }
  void setReassignmentStatus(bool value) { reassignmentStatus = value; }
  std::uint64_t getHeatmapImageWidth() const { return heatmapImageWidth; }
  void setHeatmapImageWidth(std::uint64_t value) { heatmapImageWidth = value; }
  std::uint64_t getHeatmapImageHeight() const { return heatmapImageHeight; }
  void setHeatmapImageHeight(std::uint64_t value) { heatmapImageHeight = value; }
  std::uint64_t getClientSettingsVersionNumber() const { return clientSettingsVersionNumber; }
  void setClientSettingsVersionNumber(std::uint64_t value) { clientSettingsVersionNumber = value; }
  std::uint64_t getNumberOfWraps() const { return numberOfWraps; }
  void setNumberOfWraps(std::uint64_t value) { numberOfWraps = value; }
  std::uint64_t getAxisID() const { return axisID; }
  void setAxisID(std::uint64_t value) { axisID = value; }
  std::uint64_t getParentAxisID() const { return parentAxisID; }
  void setParentAxisID(std::uint64_t value) { parentAxisID = value; }
  ClientSettingsOperation getClientSettingsOperation() const { return clientSettingsOperation; }
  void setClientSettingsOperation(ClientSettingsOperation value) {
    clientSettingsOperation = value;
  }
  bool getIsNormalized() const { return isNormalizedAxes; }
  void setIsNormalizedAxes(bool value) { isNormalizedAxes = value; }
  bool getIsLinked() const { return isLinkedAxes; }
  void setIsLinkedAxes(bool value) { isLinkedAxes = value; }
  bool getForceReadApiFlag() const { return forceReadApiFlag; }
  void setForceReadApiFlag(bool value) { forceReadApiFlag = value; }
  bool getHasDataCursor() const { return hasDataCursor; }
  void setHasDataCursor(bool value) { hasDataCursor = value; }
  bool getWrappingEnabled() const { return wrappingEnabled; }
  void setWrappingEnabled(bool value) { wrappingEnabled = value; }
  DomainType getDomain() const { return domain; }
  void setDomain(DomainType value) { domain = value; }
  std::string getCallingFcn() const { return callingFcn; }
  void setCallingFcn(const std::string& value) { callingFcn = value; }
  std::string getObserverType() const { return observerType; }
  void setObserverType(const std::string& value) { observerType = value; }
  std::string getPowBinType() const { return powBinType; }
  void setPowBinType(const std::string& value) { powBinType = value; }
  std::string getTimeResolutionType() const { return timeResolutionType; }
  void setTimeResolutionType(const std::string& value) { timeResolutionType = value; }

  /// Puts the number of wraps back to zero.
  void resetNumberOfWraps() { numberOfWraps = 0; }

  /// The time covered by one pixel column: (TMax - TMin) / Width when Width > 0 and TMax > TMin,
  /// otherwise 0.0 (a NaN in any of the three gives 0.0 too).
  double calcTimeRes() const;

 private:
  double tMin = 0.0;
  double tMax = 0.0;
  double fMin = 0.0;
  double fMax = 0.0;
  double freqBeta = 0.0;
  double freqRBW = 0.0;
  double freqMaxSampleRate = 0.0;
  double freqYBuffer = 0.0;
  double yMin = 0.0;
  double yMax = 0.0;
  double width = 0.0;
  double height = 0.0;
  double canvasWidth = 0.0;
  double canvasHeight = 0.0;
  double timeResolution = 0.0;
  double overlap = 0.0;
  double spectrogramPowMin = 0.0;
  double spectrogramPowMax = 0.0;
  double magnitudeMin = 0.0;
  double magnitudeMax = 0.0;
  double persistenceDensityMin = 0.0;
  double persistenceDensityMax = 0.0;
  double voicesPerOctave = 0.0;
  double timeBandWidth = 0.0;
  std::uint32_t powBins = 0;
  bool reassignmentStatus = false;
  std::uint64_t heatmapImageWidth = 0;
  std::uint64_t heatmapImageHeight = 0;
  std::uint64_t clientSettingsVersionNumber = 0;
  std::uint64_t numberOfWraps = 0;
  std::uint64_t axisID = 0;
  std::uint64_t parentAxisID = 0;
  ClientSettingsOperation clientSettingsOperation = ClientSettingsOperation::None;
  bool isNormalizedAxes = false;
  bool isLinkedAxes = false;
  bool forceReadApiFlag = false;
  bool hasDataCursor = false;
  bool wrappingEnabled = false;
  DomainType domain = DomainType::Time;
  std::string callingFcn;
  std::string observerType;
  std::string powBinType;
  std::string timeResolutionType;
};

}  // namespace bk_observer
