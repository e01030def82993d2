// Helpers shared by the demo pages: calling bridges through window.vantu,
// telling answers apart and showing them.
(function () {
  "use strict";

  const sdk = window.vantu && window.vantu.__vantuSdk ? window.vantu : null;
  // Opened as index.html?selftest=1, to run the self-test at once.
  const selfTesting = new URLSearchParams(location.search).get("selftest") === "1";

  // Builds an element: h("button", {class: "ghost", onclick}, "Run").
  function h(tag, attrs, ...children) {
    const el = document.createElement(tag);
    for (const [key, value] of Object.entries(attrs || {})) {
      if (value === undefined || value === null || value === false) continue;
      if (key.startsWith("on")) el.addEventListener(key.slice(2), value);
      else if (key === "class") el.className = value;
      else el.setAttribute(key, value === true ? "" : value);
    }
    for (const child of children.flat()) {
      if (child === null || child === undefined || child === false) continue;
      el.append(child instanceof Node ? child : String(child));
    }
    return el;
  }

  // Replaces an element's children, leaving out null and false.
  function fill(el, ...children) {
    el.replaceChildren(...children.flat().filter((c) => c !== null && c !== undefined && c !== false));
    return el;
  }

  const isObject = (v) => v !== null && typeof v === "object" && !Array.isArray(v);

  // What an answer means, whatever shape its bridge uses:
  // {kind: "ok" | "refused" | "unknown", text}.
  function verdict(bridge, answer) {
    if (isObject(answer)) {
      if (typeof answer.error === "number" && typeof answer.message === "string") {
        if (answer.message.startsWith("Unknown bridge")) return { kind: "unknown", text: "not in this container yet" };
        return { kind: "refused", text: answer.message };
      }
      if (isObject(answer.error) && answer.success === false) {
        return { kind: "refused", text: `${answer.error.message} (code ${answer.error.code})` };
      }
      const data = answer.data;
      if (isObject(data) && data.success === false) {
        const e = data.error;
        return { kind: "refused", text: isObject(e) ? `${e.message} (code ${e.code})` : String(e) };
      }
      if (bridge === "httpRequest" && !("status" in answer)) {
        const [text, code] = Object.entries(answer)[0] || ["no answer text", ""];
        return { kind: "refused", text: `${text} (code ${code})` };
      }
      if (bridge === "vantuGetAddress" && isObject(data) && "code" in data && "message" in data) {
        return { kind: "refused", text: `${data.message} (code ${data.code})` };
      }
    }
    return { kind: "ok", text: "answered" };
  }

  const json = (value) => (value === undefined ? "(nothing)" : JSON.stringify(value, null, 2));
  const time = () => new Date().toLocaleTimeString();

  function chip(kind, text) { return h("span", { class: `chip ${kind}` }, text || kind); }

  // Shows one outcome in an answer panel; `append` keeps earlier answers.
  function show(panel, bridge, outcome, append) {
    if (!panel) return;
    if (!append) panel.replaceChildren();
    const label = { ok: "answered", refused: "refused", unknown: "unknown bridge", waiting: "waiting…",
      fault: "error", silent: "no answer" }[outcome.kind] || outcome.kind;
    const head = h("div", { class: "head" }, chip(outcome.kind, label), h("span", { class: "what" }, bridge),
      h("span", { class: "when" }, time()));
    panel.append(head);
    if (outcome.note) panel.append(h("div", { class: "note" }, outcome.note));
    if ("answer" in outcome) panel.append(h("pre", {}, json(outcome.answer)));
  }

  // invoke with the outcome shown in `panel` (and progress handed to
  // `onProgress`); resolves to {kind, answer?, error?, text} and never
  // rejects.
  async function run(bridge, data, options = {}) {
    const panel = options.panel;
    if (!sdk) {
      const outcome = { kind: "fault", text: "window.vantu is missing", note: "This page is not running inside a vantu-h5 container." };
      show(panel, bridge, outcome);
      return outcome;
    }
    show(panel, bridge, { kind: "waiting", note: options.waitingNote || "Waiting for the native side…" });
    try {
      const answer = await sdk.invoke(bridge, data || {}, { timeout: options.timeout || undefined, onProgress: options.onProgress });
      const v = verdict(bridge, answer);
      const outcome = { kind: v.kind, text: v.text, answer };
      show(panel, bridge, outcome);
      return outcome;
    } catch (error) {
      const outcome = { kind: error.code === "timeout" ? "silent" : "fault", text: error.message, error, note: error.message };
      show(panel, bridge, outcome);
      return outcome;
    }
  }

  // call, for bridges that answer late or more than once: every answer is
  // added to the panel and handed to `onAnswer`.
  function listen(bridge, data, panel, onAnswer) {
    if (!sdk) {
      show(panel, bridge, { kind: "fault", note: "window.vantu is missing: this page is not running inside a vantu-h5 container." });
      return;
    }
    show(panel, bridge, { kind: "waiting", note: "Sent; answers appear here as they come." });
    let count = 0;
    sdk.call(bridge, data || {}, (answer) => {
      const v = verdict(bridge, answer);
      show(panel, bridge, { kind: v.kind, answer, note: `Answer ${++count}` }, count > 1);
      if (onAnswer) onAnswer(answer, v);
    });
  }

  // A URL of this demo's own origin, e.g. for the sample files.
  const here = (path) => new URL(path, location.href).href;

  // Line icons drawn for the demo (24 x 24, stroked in the text colour).
  const ICONS = {
    home: '<path d="M12 2.5l9 9.5-9 9.5-9-9.5z"/><path d="M12 8l4 4-4 4-4-4z"/>',
    device: '<rect x="6.5" y="2.5" width="11" height="19" rx="2.5"/><path d="M10.5 18h3"/>',
    notes: '<path d="M6 3h9l4 4v14H6z"/><path d="M14.5 3v4.5H19M9 12h7M9 16h5"/>',
    http: '<circle cx="12" cy="12" r="9"/><path d="M3 12h18M12 3c3.2 3.6 3.2 14.4 0 18M12 3c-3.2 3.6-3.2 14.4 0 18"/>',
    download: '<path d="M12 3.5v11.5M7 10.5l5 5 5-5M5 20h14"/>',
    lock: '<rect x="5" y="10.5" width="14" height="10.5" rx="2"/><path d="M8.5 10.5V7.5a3.5 3.5 0 0 1 7 0v3M12 14.5v2.5"/>',
    image: '<rect x="3" y="4" width="18" height="16" rx="2.5"/><circle cx="9" cy="9.5" r="1.8"/><path d="M20.5 16.5l-5-5L6 20"/>',
    pin: '<path d="M12 21s-7-6.2-7-11a7 7 0 0 1 14 0c0 4.8-7 11-7 11z"/><circle cx="12" cy="10" r="2.5"/>',
    chat: '<path d="M4 5h16v11H10l-6 4.5z"/><path d="M8 9.5h8M8 12.5h5"/>',
    window: '<rect x="3" y="4" width="18" height="16" rx="2.5"/><path d="M3 9h18M6.5 6.5h.01M9.5 6.5h.01"/>',
  };
  function icon(name) {
    const span = h("span", { class: "icon" });
    span.innerHTML = `<svg viewBox="0 0 24 24" fill="none" stroke="currentColor" stroke-width="1.8" ` +
      `stroke-linecap="round" stroke-linejoin="round" aria-hidden="true">${ICONS[name] || ""}</svg>`;
    return span;
  }

  // The network the container reports, kept up to date by "networkChanged"
  // events. With `ask` it first asks "vantuNetworkType"; an event that comes
  // before the answer is newer, so the answer is then ignored.
  function networkIndicator({ ask = true } = {}) {
    const label = h("span", {}, "");
    const el = h("span", { class: "net", title: "The network, as the container reports it" }, h("span", { class: "dot" }), label);
    function showType(type, state) {
      el.className = state ? `net ${state}` : "net";
      label.textContent = type;
    }
    const showNetwork = (type) => showType(type, type === "No Connection" ? "offline" : type.startsWith("Unknown") ? "" : "online");
    if (!sdk) {
      showType("no container", "");
      return el;
    }
    let changed = false;
    sdk.on("networkChanged", (detail) => {
      changed = true;
      showNetwork(String(detail && detail.type));
    });
    if (!ask) {
      showType("network: not asked (self-test)", "");
      return el;
    }
    showType("network…", "");
    sdk.invoke("vantuNetworkType", {}, { timeout: 20000 }).then((answer) => {
      if (changed) return;
      if (isObject(answer) && typeof answer.data === "string") showNetwork(answer.data);
      else showType(`network: ${verdict("vantuNetworkType", answer).text}`, "");
    }, () => { if (!changed) showType("network: no answer", ""); });
    return el;
  }

  // The header every page shares, plus a warning when the SDK is missing.
  // The page's header, and with `answers` (true, or a hint to show) a
  // "Last answer" card at the end, whose panel is returned.
  function frame({ icon: iconName, title, text, back = true, answers = false }) {
    // The self-test's run asks nothing but its own calls.
    const hero = h("header", { class: "hero" },
      h("div", { class: "inner" },
        h("div", { class: "top" },
          back ? h("a", { class: "back", href: "index.html" }, "‹ All demos") : h("span"),
          networkIndicator({ ask: !selfTesting })),
        h("h1", {}, icon(iconName), title),
        h("p", {}, text)));
    document.body.prepend(hero);
    const main = document.querySelector("main");
    const panel = answers ? h("div", { class: "answer", id: "answer" }) : null;
    if (panel) {
      main.append(h("section", { class: "card" }, h("h2", {}, "Last answer"),
        typeof answers === "string" ? h("p", { class: "hint" }, answers) : null, panel));
    }
    if (!sdk) {
      main.prepend(h("div", { class: "banner" },
        h("strong", {}, "The vantu SDK is not loaded"),
        "Open this page inside a vantu-h5 container: the container injects window.vantu into its pages. Here every call fails."));
    }
    return panel;
  }

  window.Demo = { sdk, selfTesting, h, fill, verdict, json, chip, show, run, listen, here, frame, icon, isObject, networkIndicator };
})();
