#pragma once

namespace vehicle {

/// A high-voltage battery at a charger: how full and how warm it is, and what power it takes. Powers in kW, temperatures in degrees
/// Celsius, states of charge in percent.
class Battery {
 public:
  static constexpr double kCapacity = 83.7;  ///< kWh

  Battery(double soc, double temperature) : soc_{soc}, temperature_{temperature} {}

  double Soc() const { return soc_; }
  double Temperature() const { return temperature_; }

  /// What the battery takes now of the power offered: less and less towards the end, and little when it is cold.
  double Power(double offered) const { return PowerAt(soc_, temperature_, offered); }
  /// The most that it would take at this state of charge, if its temperature were best.
  double PowerWhenWarm(double offered) const { return PowerAt(soc_, kBestTemperature, offered); }
  /// How long it takes to a state of charge with the power offered, at the present temperature; 0 if it is reached.
  double MinutesTo(double soc, double offered) const;

  /// Charges with a power, or discharges with a negative one, for so many minutes.
  void Charge(double power, double minutes, double ambient);
  void HeatTo(double temperature) { temperature_ = temperature; }

 private:
  static constexpr double kBestTemperature = 30;

  static double PowerAt(double soc, double temperature, double offered);

  double soc_;
  double temperature_;
};

}  // namespace vehicle
