#!/bin/sh
# `vantu-h5 run --self-test` end to end (on a display; see with_display.sh):
# the demo passes, its calls and answers are logged and the screenshot is a
# PNG; a page that reports a failure makes the command fail.
set -eu
cli=$1
demo=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$cli" run "$demo" --self-test --screenshot "$work/shot.png" --data-dir "$work/data" --timeout 120 >"$work/log" 2>&1 || {
  cat "$work/log"; echo "the demo's self-test failed"; exit 1; }
grep -q '^self-test: done' "$work/log" || { cat "$work/log"; echo "no verdict printed"; exit 1; }
calls=$(grep -c '\] call   #' "$work/log")
answers=$(grep -c '\] answer #' "$work/log")
[ "$calls" -gt 0 ] && [ "$answers" -gt 0 ] || { cat "$work/log"; echo "no calls or answers logged"; exit 1; }
[ "$(head -c 8 "$work/shot.png" | od -An -tx1 | tr -d ' \n')" = "89504e470d0a1a0a" ] || { echo "the screenshot is not a PNG"; exit 1; }

mkdir "$work/failing"
printf '%s' '<html><body><script>vantu.call("vantuDeviceName", {}, function () { document.title = "vantu-selftest:failed: on purpose"; });</script></body></html>' >"$work/failing/index.html"
if "$cli" run "$work/failing" --self-test --data-dir "$work/data" --timeout 60 >"$work/log2" 2>&1; then
  cat "$work/log2"; echo "a failing self-test exited 0"; exit 1
fi
grep -q '^self-test: failed: on purpose' "$work/log2" || { cat "$work/log2"; echo "wrong verdict"; exit 1; }
# A device profile: the page sees its permission states, position fix and network.
mkdir "$work/profiled"
printf '%s' '{"permissions": {"camera": "denied"}, "location": {"lastFix": {"latitude": 21.0285, "longitude": 105.8542}},
  "network": {"flags": ["reachable", "isWWAN"], "radioAccessTechnology": "CTRadioAccessTechnologyLTE"}}' >"$work/profile.json"
printf '%s' '<html><body><script>
vantu.invoke("vantuCheckPermission", {permission: "camera"}).then(function (p) {
  return vantu.invoke("vantuRequestPermission", {permission: "location"}).then(function () {
    return vantu.invoke("vantuGetLocation", {});
  }).then(function (l) {
    return vantu.invoke("vantuNetworkType", {}).then(function (n) {
      var ok = p.data.camera === 0 && JSON.stringify(l).indexOf("21.0285") >= 0 && JSON.stringify(n).indexOf("4G") >= 0;
      document.title = ok ? "vantu-selftest:done" : "vantu-selftest:failed: " + JSON.stringify([p, l, n]);
    });
  });
});</script></body></html>' >"$work/profiled/index.html"
"$cli" run "$work/profiled" --self-test --device-profile "$work/profile.json" --data-dir "$work/data" --timeout 60 \
  >"$work/log3" 2>&1 || { cat "$work/log3"; echo "the profile was not applied"; exit 1; }
printf '%s' '{"screens": {}}' >"$work/bad-profile.json"
if "$cli" run "$work/profiled" --device-profile "$work/bad-profile.json" --data-dir "$work/data" >"$work/log4" 2>&1; then
  echo "a profile with a scenario-only section was accepted"; exit 1
fi
grep -q 'unknown device profile section "screens"' "$work/log4" || { cat "$work/log4"; echo "wrong refusal"; exit 1; }
# Pickers scripted by the profile: the gallery picks the screenshot (named
# relative to the profile), the camera counts as present and is cancelled.
mkdir "$work/picking" "$work/picking/files"
cp "$work/shot.png" "$work/picking/files/shot.png"
printf '%s' '{"permissions": {"photoLibrary": "authorized", "camera": "authorized"},
 "pickers": {"photoLibrary": "files/shot.png", "camera": "cancel"}}' >"$work/picking/profile.json"
printf '%s' '<html><body><script>
vantu.invoke("vantuOpenGallery", {}).then(function (g) {
  return vantu.invoke("vantuCaptureImageFromCamera", {}).then(function (c) {
    var ok = g.data && g.data.meta.imageName === "shot.png" && g.data.base64.indexOf("iVBORw0KGgo") === 0 &&
             c.message === "User cancelled the operation!";
    document.title = ok ? "vantu-selftest:done" : "vantu-selftest:failed: " + JSON.stringify([g.data ? g.data.meta : g, c]);
  });
});</script></body></html>' >"$work/picking/index.html"
"$cli" run "$work/picking" --self-test --device-profile "$work/picking/profile.json" --data-dir "$work/data" --timeout 60 \
  >"$work/log5" 2>&1 || { cat "$work/log5"; echo "the scripted pickers did not answer"; exit 1; }
# The demo with its device profile: the delegate the profile scripts
# answers the host-delegated bridges, and what it was asked is logged.
"$cli" run "$demo" --self-test --device-profile "$demo/device-profile.json" --data-dir "$work/data" --timeout 120 \
  >"$work/log6" 2>&1 || { cat "$work/log6"; echo "the demo failed with its profile"; exit 1; }
for bridge in vantuLogin vantuOpenDeeplink vantuHandleSessionExpiry vantuLogout; do
  grep -q "answer #[0-9]* $bridge {\"data\":{\"success\":true}}" "$work/log6" || {
    cat "$work/log6"; echo "$bridge was not answered by the profile's delegate"; exit 1; }
done
grep -q 'answer #[0-9]* vantuFetchCustomerId "demo-customer-42"' "$work/log6" || { cat "$work/log6"; echo "no customer id"; exit 1; }
grep -q 'host   host.navigate {"to":"orders"' "$work/log6" || { cat "$work/log6"; echo "delegate calls not logged"; exit 1; }
printf '%s' '{"delegates": {"host": {"answers": {"login": {"success": true}}}}, "environment": {"delegate": "nobody"}}' \
  >"$work/bad-delegate.json"
if "$cli" run "$work/profiled" --device-profile "$work/bad-delegate.json" --data-dir "$work/data" >"$work/log7" 2>&1; then
  echo "a profile naming a missing delegate was accepted"; exit 1
fi
grep -q 'environment: no delegate named "nobody"' "$work/log7" || { cat "$work/log7"; echo "wrong refusal"; exit 1; }
echo "run ok ($calls calls, $answers answers)"
