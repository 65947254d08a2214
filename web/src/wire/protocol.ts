// The messages that travel between the browser and the web host; docs/protocol.md is the contract.

export type Language = 'english' | 'german'

export interface HostState {
  setup: boolean
  account: string | null
  language: Language
  product: string
  version: string
}

export type FailureCode =
  | 'bad_request'
  | 'wrong_secret'
  | 'wrong_password'
  | 'weak_password'
  | 'common_password'
  | 'already_set_up'
  | 'too_many_tries'
  | 'too_many_sessions'
  | 'not_saved'
  | 'forbidden'
  | 'signed_out'
  | UploadFailureCode

/** What only an upload is answered. */
export type UploadFailureCode = 'no_form' | 'refused' | 'busy' | 'too_big' | 'no_room' | 'no_audit'

export interface Failure {
  error: FailureCode
  retryAfter?: number
}

export interface Items {
  length: number
  revision: number
}

/** The orders in which the host shows a list. */
export type ListOrder = 'added' | 'text' | 'domain'

export type Kind =
  | 'Frame'
  | 'Label'
  | 'TextField'
  | 'CheckBox'
  | 'OptionButton'
  | 'Button'
  | 'ListBox'
  | 'ComboBox'
  | 'Timer'
  | 'ScrollBar'
  | 'DriveList'
  | 'FolderList'
  | 'FileList'

/** Something that is wrong with a source text. */
export interface Mark {
  /** Of the text that has it. */
  name: string
  /** From 1; 0 where there is no place. */
  line: number
  /** From 1, in 16-bit units. */
  column: number
  text: string
  /** In another text than the control's. */
  elsewhere: boolean
}

export interface Control {
  kind: Kind
  enabled: boolean
  visible: boolean
  caption?: string
  toolTip?: string
  label?: string
  text?: string
  value?: number
  items?: Items
  index?: number
  multiLine?: boolean
  counts?: boolean
  source?: boolean
  marks?: Mark[]
  fixedPitch?: boolean
  secret?: boolean
  placeholder?: string
  editable?: boolean
  group?: string | number
  min?: number
  max?: number
  interval?: number
  /** Of a list: the field that takes a chosen entry, and the buttons that add to and remove from it. */
  entry?: string
  add?: string
  remove?: string
  /** Of a button: controls of which one must hold something. */
  needs?: string[]
  /** Of a button: what people come for. */
  primary?: boolean
  /** Of a button: what it destroys cannot be taken back. The host asks before it runs the click. */
  destroys?: boolean
  /** Of a label: whether what it says is good or bad. */
  tone?: Tone
}

export type Tone = 'plain' | 'good' | 'waiting' | 'bad'

export type LayoutNode = { grow?: boolean } & (
  | { control: string }
  | { column: LayoutNode[] }
  | { row: LayoutNode[] }
  | { grid: LayoutNode[] }
  | { frame: string; content: LayoutNode }
)

export interface PageEntry {
  name: string
  group: string
  title: string
}

export interface ActivityEntry {
  time: string
  kind: string
  text: string
  ok: boolean
  error: string
  /** A failure that the step was prepared for: nothing to tell anybody. */
  expected?: boolean
}

export type Reply = 'ok' | 'cancel'

export interface Hello {
  type: 'hello'
  account: string
  language: Language
  product: string
  version: string
  pages: PageEntry[]
  open: string | null
}

export interface FormMessage {
  type: 'form'
  form: string
  caption: string
  dialog: boolean
  modal: boolean
  layout: LayoutNode
  controls: Record<string, Control>
}

export interface ChangeMessage {
  type: 'change'
  form: string
  ack: number
  caption?: string
  controls: Record<string, Partial<Control>>
}

export interface RowsMessage {
  type: 'rows'
  form: string
  control: string
  request: number
  revision: number
  filter: string
  order?: ListOrder
  length: number
  start: number
  rows: string[]
  indexes?: number[]
  /** Where the row that was sought is: in the list, and on view unless the filter hides it. */
  found?: { index: number; position: number | null } | null
}

export interface BoxMessage {
  type: 'box'
  id: number | string
  title: string
  text: string
  style: number
  buttons: Reply[]
  /** The act that the box asks about, if it destroys something. */
  act?: string
}

export interface BusyMessage {
  type: 'busy'
  on: boolean
  text: string
  done: number
  total: number
}

export interface ActivityMessage {
  type: 'activity'
  first: number
  total: number
  failed: number
  entries: ActivityEntry[]
  page?: string
  /** It was the showing of a page, not something that the user did on it. */
  showing?: boolean
}

export interface RecordMessage {
  type: 'record'
  request: number
  start: number
  total: number
  entries: ActivityEntry[]
}

export interface CaptionsMessage {
  type: 'captions'
  pages: Record<string, { control: string; text: string }[]>
}

/** A program that runs on a terminal. */
export interface TerminalMessage {
  type: 'terminal'
  id: number
  title: string
  /** It has just been started; others are told again to a browser that came back. */
  fresh: boolean
}

export interface OutputMessage {
  type: 'output'
  id: number
  /** How many bytes came before. */
  position: number
  /** Bytes in base64. */
  data: string
}

export interface EndedMessage {
  type: 'ended'
  id: number
  status?: number
  signal?: number
}

/** A file that a page has made for the user. */
export interface OfferedFile {
  token: string
  name: string
  size: number
}

export type ErrorCode = 'refused' | 'no_form' | 'malformed' | 'unknown_page' | 'busy' | 'no_audit' | 'not_recorded'

export type ServerMessage =
  | Hello
  | FormMessage
  | ChangeMessage
  | { type: 'closed'; form: string }
  | RowsMessage
  | BoxMessage
  | { type: 'unbox'; id: number | string }
  | BusyMessage
  | ActivityMessage
  | RecordMessage
  | CaptionsMessage
  | TerminalMessage
  | OutputMessage
  | EndedMessage
  | { type: 'gone'; id: number }
  | ({ type: 'file' } & OfferedFile)
  | { type: 'files'; files: OfferedFile[] }
  | { type: 'done'; seq: number }
  | { type: 'error'; seq?: number; request?: number; code: ErrorCode; text: string }

export type UserEvent =
  | { event: 'click' }
  | { event: 'text'; text: string }
  | { event: 'choose'; index: number }
  | { event: 'scroll'; value: number }
  | { event: 'remove'; revision: number; filter: string; order: ListOrder; ranges: readonly (readonly [number, number])[] }

export type SequencedMessage =
  | { type: 'open'; page: string }
  | ({ type: 'event'; form: string; control: string } & UserEvent)
  | { type: 'close'; form: string }

export type TerminalAct =
  | { type: 'input'; id: number; text: string }
  | { type: 'resize'; id: number; columns: number; rows: number }
  | { type: 'taken'; id: number; position: number }
  | { type: 'end'; id: number }

export type PlainMessage =
  | { type: 'answer'; id: number | string; reply: Reply }
  | {
      type: 'rows'
      form: string
      control: string
      request: number
      start: number
      count: number
      filter: string
      order: ListOrder
      /** A row whose place is asked for: its place in the list, or its text. */
      index?: number
      find?: string
    }
  | { type: 'record'; request: number; start: number; count: number }
  | { type: 'captions' }
  /** Somebody is there, though nothing else says so. */
  | { type: 'active' }
  | TerminalAct

export const closeCodes = { tooBig: 1009, rulesBroken: 1008, replaced: 4001, ended: 4002 } as const
