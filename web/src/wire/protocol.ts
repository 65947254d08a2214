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
  | 'Table'
  | 'Link'
  | 'Chart'

/** One row of numbers in a chart, a value for each label. */
export interface ChartSeries {
  name: string
  caption: string
  tone?: Tone
  values: number[]
}

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

export type ColumnKind = 'text' | 'number' | 'time' | 'address' | 'verdict' | 'word' | 'severity' | 'check' | 'page'

export interface Column {
  name: string
  caption: string
  kind: ColumnKind
  sorts?: boolean
  /** Left out first where there is no room. */
  minor?: boolean
  /** The page that each cell opens, with its text as query. */
  page?: string
}

/** A text, or more: the seconds since 1970 of a time, the page and query of a link. */
export type Cell = string | { text: string; at?: number; page?: string; query?: string }

export interface TableRow {
  key: string
  cells: readonly Cell[]
}

/** What the entries of a list are, for looking them up. */
export type EntryKind = 'address' | 'network' | 'domain' | 'mail' | 'word'

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
  /** A product path, which separates folders by backslashes. */
  path?: boolean
  marks?: Mark[]
  fixedPitch?: boolean
  secret?: boolean
  /** What is typed chooses the rows that the form shows: there is nothing to save. */
  choosesRows?: boolean
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
  /** Of a list: the button that opens the dialog for its files. */
  transfer?: string
  /** Of a file list: how its form exchanges files. */
  exchange?: Exchange
  /** Of a button: controls of which one must hold something. */
  needs?: string[]
  /** Of a button: what people come for. */
  primary?: boolean
  /** Of a button: what it destroys cannot be taken back. The host asks before it runs the click. */
  destroys?: boolean
  /** Of a chart: how it is drawn, what stands below its marks, and the numbers. */
  shape?: 'bars' | 'lines'
  stacked?: boolean
  /** The labels are times. */
  times?: boolean
  labels?: string[]
  series?: ChartSeries[]
  /** Of a label: whether what it says is good or bad. */
  tone?: Tone
  /** Of a list: what can be looked up in it. */
  entries?: EntryKind
  /** Of a table. */
  columns?: Column[]
  rows?: { revision: number }
  sort?: string
  filter?: string
  filters?: boolean
  /** The field of the form in which people type the filter; without one, the table has its own. */
  filterField?: string
  /** What to say where a table has no rows and nothing filters it. */
  empty?: string
  chosen?: string[]
  /** Of a link. */
  page?: string
  query?: string
  /** Of a text field that expects something: why its text does not fit; null where it does. */
  hint?: Hint | null
  /** Somebody has typed a text into it that no act has used yet. */
  unsaved?: boolean
  /** The page has put another text in the place of an unsaved one. */
  setAside?: boolean
  /** The fields whose texts an act on this control replaces. */
  replaces?: string[]
  /** Of a list: others have changed what it shows. */
  stale?: boolean
}

export interface Hint {
  text: string
  /** More text may mend it. */
  unfinished: boolean
}

/** Names of controls: `run` writes the file that `path` names while `exports` is chosen, and reads it otherwise. */
export interface Exchange {
  path: string
  run: string
  exports?: string
  imports?: string
  result?: string
}

export type Tone = 'plain' | 'good' | 'waiting' | 'bad'

export type LayoutNode = { grow?: boolean } & (
  | { control: string }
  | { column: LayoutNode[] }
  | { row: LayoutNode[] }
  | { grid: LayoutNode[] }
  | { frame: string; content: LayoutNode; fold?: boolean }
)

export interface PageEntry {
  name: string
  /** Which group it belongs to, the same in every language. */
  section: string
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
  /** Written by the showing of a page or beside an act: nobody asked for it. */
  routine?: boolean
}

/** What an act says of itself. */
export interface Said {
  text: string
  tone: 'good' | 'neutral' | 'bad'
}

export type Reply = 'ok' | 'other' | 'cancel'

export interface Hello {
  type: 'hello'
  account: string
  /** By which the tab comes back to this console. */
  tab: string
  language: Language
  product: string
  version: string
  pages: PageEntry[]
  open: string | null
  /** With which the open page shows what it shows. */
  query?: string
}

export interface FormMessage {
  type: 'form'
  form: string
  caption: string
  query?: string
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
  query?: string
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

export interface CellsMessage {
  type: 'cells'
  form: string
  control: string
  request: number
  revision: number
  length: number
  /** There are more rows than `length`. */
  more: boolean
  start: number
  rows: TableRow[]
  /** Why the rows are not as asked for; empty if they are. */
  problem: string
  /** Where the row is whose key was sent along; null if that is not known. */
  found?: number | null
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
  /** The text of a third button. */
  other?: string
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
  said?: Said[]
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

export interface Caption {
  control: string
  text: string
  /** The title around the control. */
  frame?: string
}

export interface CaptionsMessage {
  type: 'captions'
  pages: Record<string, Caption[]>
}

/** An entry of a list, and where it is shown. */
export interface EntryHit {
  page: string
  control: string
  frame: string
  text: string
}

/** Where a search for entries goes on. */
export interface SearchPlace {
  list: number
  row: number
}

export interface EntriesMessage {
  type: 'entries'
  request: number
  text: string
  hits: EntryHit[]
  next: SearchPlace | null
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

export type ErrorCode = 'refused' | 'unfit' | 'no_form' | 'malformed' | 'unknown_page' | 'busy' | 'no_audit' | 'not_recorded'

export type ServerMessage =
  | Hello
  | FormMessage
  | ChangeMessage
  | { type: 'closed'; form: string; unsaved?: string[] }
  | RowsMessage
  | CellsMessage
  | { type: 'leave' }
  | { type: 'go'; page: string; query: string }
  | BoxMessage
  | { type: 'unbox'; id: number | string }
  | BusyMessage
  | ActivityMessage
  | RecordMessage
  | CaptionsMessage
  | EntriesMessage
  | TerminalMessage
  | OutputMessage
  | EndedMessage
  | { type: 'gone'; id: number }
  | ({ type: 'file'; awaited?: boolean } & OfferedFile)
  | { type: 'files'; files: OfferedFile[] }
  | { type: 'done'; seq: number }
  | { type: 'error'; seq?: number; request?: number; code: ErrorCode; text: string; form?: string; control?: string }

export type UserEvent =
  | { event: 'click' }
  | { event: 'text'; text: string }
  | { event: 'choose'; index: number }
  | { event: 'scroll'; value: number }
  | { event: 'keys'; keys: readonly string[] }
  | { event: 'sort'; text: string }
  | { event: 'filter'; text: string }
  | { event: 'fetch' }
  | { event: 'reload' }
  | { event: 'remove'; revision: number; filter: string; order: ListOrder; ranges: readonly (readonly [number, number])[] }

export type SequencedMessage =
  | { type: 'open'; page: string; query?: string }
  | { type: 'language'; language: Language }
  | ({ type: 'event'; form: string; control: string } & UserEvent)
  | { type: 'close'; form: string }
  | { type: 'leave' }

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
  | { type: 'cells'; form: string; control: string; request: number; start: number; count: number; key?: string }
  | { type: 'record'; request: number; start: number; count: number }
  | { type: 'captions' }
  | { type: 'find'; request: number; text: string; from?: SearchPlace }
  /** Somebody is there, though nothing else says so. */
  | { type: 'active' }
  /** Look whether others have changed the lists of the page. */
  | { type: 'look' }
  | TerminalAct

export const closeCodes = { tooBig: 1009, rulesBroken: 1008, replaced: 4001, ended: 4002, tooManyTabs: 4003 } as const
