// Types of the vantu-h5 JavaScript SDK (sdk/js/vantu.js) and of every
// bridge's arguments and answers. Answers are typed as the native side
// sends them, odd shapes included; see docs/bridges.md for the texts.

declare namespace VantuH5 {
  // ---- Answer shapes shared by many bridges ----

  /** `{"error": 2, "message": TEXT}`: most refusals, an unknown bridge, and a call made without a native side. */
  interface FlatError { error: number; message: string }
  /** `{"error": {"code", "message"}, "success": false}`: the file bridges' "File not found." (6) and "File could not be deleted." (7). */
  interface StructuredError { error: { code: number; message: string }; success: false }
  /** `{"data": {"success": true}}`. */
  interface DataSuccess { data: { success: true } }
  /** Success with the host's value beside the flag: `{"success": true, "data": VALUE}`. */
  interface HostValue { success: true; data: unknown }
  /** Arguments of a bridge that reads none. */
  type NoArgs = Record<string, never>;
  /** A JSON object as a page sends it. */
  type Json = { [key: string]: unknown };

  // ---- Device and app info ----

  type NetworkType = "Unknown" | "No Connection" | "Wifi" | "2G" | "3G" | "4G" | `Unknown Technology: "${string}"`;
  interface DeviceData {
    name: string; manufacturer: string; os_version: string; imei: ""; locale: string; network_type: NetworkType;
  }
  interface AppInfo { appVersion: string; h5Version: string }
  /** Bare when the host added nothing; wrapped in "data" with "app_info_pt" when it did. */
  type AppInfoAnswer = AppInfo | { data: AppInfo & { app_info_pt: Json } };

  // ---- Alerts and share ----

  interface AlertArgs { message: string; type: "normal" | "custom" | (string & {}); title?: string; buttons?: string[] }
  interface ShareFailure { data: { success: false; error: string } }

  // ---- Container ----

  type StartupParams = { params: Json; param?: Json } | { params?: unknown; param: Json };
  type PushWindowArgs = { url: string } & StartupParams;
  type VantuPushWindowArgs = { url: string; appId: string } & StartupParams;
  interface WebViewFlags {
    mediaPlaybackRequiresUserGesture?: unknown;
    allowsInlineMediaPlayback?: unknown;
    contentInsetAdjustmentBehavior?: number;
    keyboardDismissMode?: number;
    [flag: string]: unknown;
  }

  // ---- HTTP ----

  interface HttpRequestArgs {
    url: string;
    method: string;
    /** An object is sent as JSON, a string as its UTF-8 bytes. */
    data?: Json | string;
    headers?: Record<string, string>;
    /** Milliseconds, counted in whole seconds (1500 is 1 s). */
    timeout?: number;
  }
  interface HttpResponse {
    headers: Record<string, string>;
    status: number;
    /** The body as UTF-8 text, "" when it is not UTF-8. */
    data: string;
    /** The headers as JSON text. */
    headersStr: string;
  }
  /** Request failures answer one entry keyed by the message, valued by the code. */
  type HttpRequestError =
    | { "invalid url": 2 } | { "invalid method": 2 } | { "error": 12 }
    | { "no data received": -2 } | { "no HTTPresponse received": -2 } | FlatError;

  // ---- Downloads and files ----

  interface DownloadArgs { fileName: string; fileDownloadUrl: string; showNetworkActivityIndicator?: "true" | "false" | (string & {}) }
  interface DownloadResult {
    fileName: string;
    fileDownloadUrl: string;
    success: boolean;
    /** The local path on success, "" otherwise. */
    filePath: string;
    error?: { code: number; message: string };
  }
  interface FileNameArgs { fileName: string }

  // ---- Permissions and owner authentication ----

  type PermissionWord = "camera" | "photos" | "video" | "location" | "microphone" | "contacts" | "speech";
  /** 1 granted, 0 refused, -1 not asked yet. */
  type PermissionStatus = 1 | 0 | -1;
  interface CheckPermissionArgs {
    /** One word or several separated by commas. */
    permission: PermissionWord | (string & {});
  }
  interface CheckPermissionAnswer { success: true; data: { [word: string]: PermissionStatus } }
  interface RequestPermissionAnswer { data: { [word: string]: 1 | 0 }; success: true; authorizedStatus: boolean }
  interface OwnerAuthArgs { Cancel?: string; Fallback?: string; authenticationReason?: string }
  /** Codes: 1 cancelled by the user, 2 too many attempts, 0 anything else. */
  type OwnerAuthAnswer = DataSuccess | { data: { success: false; error: { code: 0 | 1 | 2; message: string } } };

  // ---- Pickers ----

  interface PickedImage {
    data: {
      /** "" when no bytes could be read. */
      base64: string;
      meta: { imageName?: string; imageType?: "jpg" | "png" | ""; imageSize?: number };
    };
  }
  interface PickFileArgs { maxLengthPerFile?: number; maxNumberOfFiles?: number; extensionsAllowed?: string[] }
  type PickedFile =
    | { meta: { fileName: string; fileSize: number; fileType: string }; base64?: string }
    | { error: string };

  // ---- Location ----

  interface Address {
    locality: string; subLocality: string; admin: string; subAdmin: string;
    postalCode: string; countryCode: string; countryName: string; address: string;
  }

  /**
   * Every bridge: its arguments and what it answers. Each call may also be
   * answered with a FlatError (an unknown bridge, no native side).
   * "none" in a comment means some outcome sends no answer at all.
   */
  interface Bridges {
    // Host-delegated
    vantuOpenDeeplink: { args: { deeplink: string }; answer: DataSuccess | FlatError };
    vantuNavigateTo: {
      args: { navigateTo: string; data?: Json | null; clearBackStack?: boolean | null; finishThis?: boolean | null };
      answer: HostValue | FlatError;
    };
    vantuLogin: { args: Json; answer: DataSuccess | FlatError };
    vantuLogout: { args: Json; answer: DataSuccess | FlatError };
    vantuHandleSessionExpiry: { args: Json; answer: DataSuccess | FlatError };
    /** Two answers when the host's value is an object: that object first, then the usual answer. */
    vantuFetchAuthToken: { args: Json; answer: HostValue | FlatError | Json };
    /** The host's value itself, not wrapped. */
    vantuFetchCustomerId: { args: NoArgs; answer: unknown };
    /** `{"data": []}` when the host gave no value. */
    vantuFetchValuesForKeys: { args: { keys: string[] }; answer: { data: unknown } | FlatError };
    vantuFetchParamsAgainstKey: { args: { key: string }; answer: HostValue | FlatError };
    vantuAnalyticsTracking: { args: Json; answer: HostValue | FlatError };

    // Device and app info (never refused)
    vantuDeviceManufacturer: { args: NoArgs; answer: { data: string } };
    vantuDeviceName: { args: NoArgs; answer: { data: string } };
    vantuOsVersion: { args: NoArgs; answer: { data: string } };
    vantuDeviceLocale: { args: NoArgs; answer: { data: string } };
    vantuDeviceImei: { args: NoArgs; answer: { data: "" } };
    vantuNetworkType: { args: NoArgs; answer: { data: NetworkType } };
    vantuDeviceData: { args: NoArgs; answer: { data: DeviceData } };
    vantuGetAppVersion: { args: NoArgs; answer: { data: { appVersion: string } } };
    vantuGetAppInfo: { args: NoArgs; answer: AppInfoAnswer };

    // Alerts and share
    /** Answered when a button is tapped, which may be much later. */
    showAlert: { args: AlertArgs; answer: DataSuccess | FlatError };
    vantuShareText: { args: { text: string }; answer: DataSuccess | FlatError };
    vantuShareTextAndImage: { args: { text?: string; image?: string }; answer: DataSuccess | ShareFailure | FlatError };

    // Container: a push that succeeds sends no answer; bars answer the bare `true`.
    pushWindow: { args: PushWindowArgs; answer: FlatError };
    vantuPushWindow: { args: VantuPushWindowArgs; answer: FlatError };
    vantuShowTitleBar: { args: { value: boolean }; answer: true | FlatError };
    vantuRenderAboveHomeIndicator: { args: { value: boolean }; answer: true | FlatError };
    vantuChangeStatusBarColor: { args: { color: string }; answer: true | FlatError };
    vantuResetStatusBarBackgroundColor: { args: NoArgs; answer: true | FlatError };
    vantuChangeWebSetting: { args: WebViewFlags; answer: true | FlatError };

    // Storage: a key with nothing stored reads "".
    vantuGetData: { args: { keys: string[] }; answer: { data: Json } | FlatError };
    vantuSaveData: { args: { data: Json }; answer: { data: Record<string, never> } | FlatError };
    vantuRemoveData: { args: { keys: string[] }; answer: { data: Record<string, never> } | FlatError };

    // HTTP: every status, 404 and 500 included, is an HttpResponse.
    httpRequest: { args: HttpRequestArgs; answer: HttpResponse | HttpRequestError };

    // Downloads and files
    vantuDownloadFile: { args: DownloadArgs; answer: { data: DownloadResult } | FlatError };
    vantuGetFilePath: { args: FileNameArgs; answer: { data: { filePath: string; success: true } } | StructuredError | FlatError };
    /** Success is a fixed object whose keys the native side chooses. */
    vantuRemoveFile: { args: FileNameArgs; answer: StructuredError | FlatError | Json };
    /** none while photo access is undecided or limited. */
    vantuDownloadAndSaveImageToGallery: { args: { imageUrl: string }; answer: { success: true } | FlatError | Json };

    // Permissions: a refused permission still succeeds, with 0.
    /** A permission in a state outside 1/0/-1 has no entry. */
    vantuCheckPermission: { args: CheckPermissionArgs; answer: CheckPermissionAnswer | FlatError };
    /** Waits for the user's choice; none for a state outside the known ones. */
    vantuRequestPermission: { args: { permission: PermissionWord | (string & {}) }; answer: RequestPermissionAnswer | FlatError };
    vantuAuthenticateOnDevice: { args: OwnerAuthArgs; answer: OwnerAuthAnswer };

    // Pickers: answered once the user has chosen or cancelled.
    vantuOpenGallery: { args: NoArgs; answer: PickedImage | FlatError };
    vantuCaptureImageFromCamera: { args: { useFrontCamera?: boolean }; answer: PickedImage | FlatError };
    vantuPickFile: { args: PickFileArgs; answer: { data: PickedFile[] } | FlatError };

    // Location: geocoding failures come inside "data".
    vantuGetLocation: { args: NoArgs; answer: { success: true; data: { lat: string; long: string } } | FlatError };
    vantuGetAddress: {
      args: { latitude: number; longitude: number };
      answer: { data: Address } | { data: { code: number; message: string } } | FlatError;
    };
  }

  type BridgeName = keyof Bridges;
  type Args<N extends BridgeName> = Bridges[N]["args"];
  /** What a call of N may be answered with, the SDK's and the runtime's refusals included. */
  type Answer<N extends BridgeName> = Bridges[N]["answer"] | FlatError;
  /** `data` may be left out only for bridges whose arguments are all optional. */
  type DataParam<N extends BridgeName> = {} extends Args<N> ? [data?: Args<N>] : [data: Args<N>];
  /** What follows the name in `call`: data (see DataParam), callback, options. */
  type CallRest<N extends BridgeName> = {} extends Args<N>
    ? [data?: Args<N>, callback?: (answer: Answer<N>) => void, options?: CallOptions]
    : [data: Args<N>, callback?: (answer: Answer<N>) => void, options?: CallOptions];
  /** A name that is not one of the typed bridges (a host's own bridge). */
  type OtherName<S extends string> = S extends BridgeName ? never : S;

  /**
   * Events the native side sends, by name: the type of each one's detail.
   * A page or a host adds its own by declaration merging:
   *
   *     declare global { namespace VantuH5 { interface Events { signedIn: { user: string } } } }
   *
   * Names not in the map are accepted with an `unknown` detail.
   */
  interface Events {
    /** The network changed; `type` is the text "vantuNetworkType" answers now. */
    networkChanged: { type: NetworkType };
    /** The container's screen became visible. */
    containerShown: null;
    /** The container's screen was hidden (covered, or the app went to the background). */
    containerHidden: null;
    /** The container's window gained or lost the focus. */
    windowFocus: { focused: boolean };
  }
  type EventName = keyof Events;
  /** A name that is not in the event map (a host's own event). */
  type OtherEvent<S extends string> = S extends EventName ? never : S;
  type Listener<K extends EventName> = (detail: Events[K]) => void;

  /** Bytes of a call's transfer so far; `total` is null while unknown. */
  interface Progress { received: number; total: number | null }
  /** One entry of a native batch: an answer, a progress report or an event. */
  type NativeEntry =
    | readonly [kind: 0, id: number, payload: unknown]
    | readonly [kind: 1, id: number, progress: Progress]
    | readonly [kind: 2, name: string, detail: unknown];

  interface CallOptions {
    /** Called with the progress of the call's transfer (a download) while the native side reports it. */
    onProgress?: (progress: Progress) => void;
  }
  interface InvokeOptions {
    /** Milliseconds to wait for the first answer; no limit when left out. Progress does not extend it. */
    timeout?: number;
    /** Called with the progress of the call's transfer until the promise settles. */
    onProgress?: (progress: Progress) => void;
  }

  /** Why an invoke was rejected (or a call refused for bad arguments). */
  class VantuError extends Error {
    name: "VantuError";
    code: "no-native" | "timeout" | "unload" | "bad-argument";
    bridge: string | undefined;
  }

  interface Sdk {
    readonly version: string;
    /**
     * Calls a bridge; `callback` runs once per answer, with the payload as
     * the native side sent it, for the life of the page; `onProgress` gets
     * the progress the native side reports. Returns the call's id, 0 when
     * there is no native side (the callback then gets a FlatError).
     */
    call<N extends BridgeName>(name: N, ...rest: CallRest<N>): number;
    call<S extends string>(name: S & OtherName<S>, data?: Json, callback?: (answer: unknown) => void, options?: CallOptions): number;
    /** Calls a bridge and resolves with its first answer; rejects with a VantuError. */
    invoke<N extends BridgeName>(name: N, ...rest: [...DataParam<N>, options?: InvokeOptions]): Promise<Answer<N>>;
    invoke<S extends string>(name: S & OtherName<S>, data?: Json, options?: InvokeOptions): Promise<unknown>;
    /**
     * Calls `listener` with the detail of each event called `name`, until
     * the returned function (or `off`) removes it. Adding a listener that is
     * there already changes nothing.
     */
    on<K extends EventName>(name: K, listener: Listener<K>): () => void;
    on<S extends string>(name: S & OtherEvent<S>, listener: (detail: unknown) => void): () => void;
    /** Removes a listener added with `on`; one that is not there is ignored. */
    off<K extends EventName>(name: K, listener: Listener<K>): void;
    off<S extends string>(name: S & OtherEvent<S>, listener: (detail: unknown) => void): void;
    readonly VantuError: typeof VantuError;
    /** Used by the native side to deliver an answer. */
    __deliver(id: number, payload: unknown): void;
    /** Used by the native side to deliver entries in order: an array, or its JSON text. */
    __receive(batch: readonly NativeEntry[] | string): void;
  }
}

interface Window { readonly vantu: VantuH5.Sdk }
declare const vantu: VantuH5.Sdk;
