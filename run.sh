#!/usr/bin/env bash
# Installs what is missing, builds, and runs the bridge with the simulated vehicle until Ctrl-C.
#   HTTP_PORT=8080  DISCOVERY_PORT=30490  SCENARIO=default  SPEED=10
set -euo pipefail
cd "$(dirname "$0")"
source tools/setup.sh

http_port=${HTTP_PORT:-8080}
discovery_port=${DISCOVERY_PORT:-30490}

# A port is free if nothing listens on it.
busy() { (exec 3<>"/dev/tcp/127.0.0.1/$1") 2>/dev/null; }

install_packages
build release charging_management_core vehicle
busy "$http_port" && fail "port $http_port is in use: stop the program that has it, or set HTTP_PORT"

root=$PWD/.run
etc=$root/opt/TROV__PLNT5_Sys_Adaptive_01/etc
mkdir -p "$etc"
www=/opt/TROV__PLNT5_Sys_Adaptive_01/www
sed -e "s/\"port\": 8080/\"port\": $http_port/g" -e "s#^}#,  \"documentRoot\": \"$www\" }#" config/charging_management_core_conf.json \
  >"$etc/charging_management_core_conf.json"
mkdir -p "$root$www"
cp config/www/* "$root$www"
sed "s/\"port\": 30490/\"port\": $discovery_port/" config/someip_deployment.json >"$etc/someip_deployment.json"

# The two streams go their own ways: the vehicle's lines are indented and marked. In sessions of their own, all but this script are out of
# Ctrl-C's reach, so that the last lines are shown as well.
exec {bridge_lines}> >(exec setsid sed -u 's/^/bridge | /')
bridge_printer=$!
exec {vehicle_lines}> >(exec setsid sed -u 's/^/                        vehicle | /')
vehicle_printer=$!
stop() {
  trap - INT TERM EXIT
  [ -n "${bridge_pid:-}" ] && kill -TERM "$bridge_pid" 2>/dev/null && wait "$bridge_pid" 2>/dev/null
  [ -n "${vehicle_pid:-}" ] && kill -TERM "$vehicle_pid" 2>/dev/null && wait "$vehicle_pid" 2>/dev/null
  exec {bridge_lines}>&- {vehicle_lines}>&-
  wait "$bridge_printer" "$vehicle_printer" 2>/dev/null
  echo
  echo "Both stopped."
}
trap 'stop; exit 0' INT TERM
trap stop EXIT

setsid build/release/bin/vehicle --deployment "$etc/someip_deployment.json" --scenario "${SCENARIO:-default}" --speed "${SPEED:-10}" </dev/null \
  >&"$vehicle_lines" 2>&1 {bridge_lines}>&- {vehicle_lines}>&- &
vehicle_pid=$!
ARA_ROOT=$root ARA_LOG=console setsid build/release/bin/charging_management_core 2>&"$bridge_lines" </dev/null {bridge_lines}>&- {vehicle_lines}>&- &
bridge_pid=$!

for _ in $(seq 100); do
  busy "$http_port" && break
  kill -0 "$bridge_pid" 2>/dev/null || fail "the bridge ended before it listened: its lines above say why"
  kill -0 "$vehicle_pid" 2>/dev/null || fail "the simulated vehicle ended: its lines above say why"
  sleep 0.1
done
busy "$http_port" || fail "the bridge did not listen on port $http_port within 10 s"

cat <<TEXT

The bridge listens on http://127.0.0.1:$http_port; the simulated vehicle charges its battery, at ${SPEED:-10} times the speed of a real one. Try, in another terminal:

  curl -s http://127.0.0.1:$http_port/ChargingManagementCore/views
  curl -s -H 'Content-Type: application/json' -d '{"visibility":"requestedViewVisible"}' \\
    "http://127.0.0.1:$http_port\$(curl -s http://127.0.0.1:$http_port/ChargingManagementCore/views | grep -o '/ChargingManagementCore/views/[0-9a-f-]*' | head -n 1)"
  /usr/bin/python3 -m websockets ws://127.0.0.1:$http_port/
      and type  {"action":"subscribe","path":"/ChargingManagementCore/views","requestId":"1"}

or open http://127.0.0.1:$http_port/ in a browser, which shows all resources as they change.
Ctrl-C stops both.

TEXT
wait "$bridge_pid"
