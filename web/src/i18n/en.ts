import type { Refusal } from '../model/session'
import type { Step, Summary } from '../model/toast-text'
import type { UploadProblem } from '../model/uploads'
import type { FailureCode, UploadFailureCode } from '../wire/protocol'
import { briefForm, clockForm, clockLanguage } from './clock'
import { sizeText } from './size'
import { timeText } from './time'

const number = new Intl.NumberFormat('en')
const time = new Intl.DateTimeFormat(clockLanguage('en'), clockForm)
const briefTime = new Intl.DateTimeFormat(clockLanguage('en'), briefForm)
const plural = (count: number, one: string, many: string): string => `${number.format(count)} ${count === 1 ? one : many}`

const counted = (kind: Step['kind'], count: number): string => {
  switch (kind) {
    case 'set':
      return plural(count, 'more value set', 'more values set')
    case 'delete':
      return plural(count, 'value deleted', 'values deleted')
    case 'statement':
      return plural(count, 'statement run', 'statements run')
    case 'component':
      return plural(count, 'list operation', 'list operations')
    case 'program':
      return plural(count, 'program started', 'programs started')
    case 'file':
      return plural(count, 'file written', 'files written')
    case 'other':
      return plural(count, 'more step', 'more steps')
  }
}

const told = (step: Step): string => {
  switch (step.kind) {
    case 'set': {
      const what = step.what === 'option' ? 'Option' : 'Registry value'
      return step.value === '' ? `${what} ${step.name} emptied` : `${what} ${step.name} set to ${step.value}`
    }
    case 'delete':
      return `Registry value ${step.name} deleted`
    case 'statement':
      return '1 statement run'
    case 'component':
      return `Done: ${step.text}`
    case 'program':
      return `Started: ${step.text}`
    case 'file':
      return `Written: ${step.text}`
    case 'other':
      return step.text
  }
}

const failureStep = (step: Step): string => {
  switch (step.kind) {
    case 'set':
      return `${step.what === 'option' ? 'Option' : 'Registry value'} ${step.name} was not set`
    case 'delete':
      return `Registry value ${step.name} was not deleted`
    case 'statement':
      return 'A statement failed'
    case 'component':
      return `Failed: ${step.text}`
    case 'program':
      return `Not started: ${step.text}`
    case 'file':
      return `Not written: ${step.text}`
    case 'other':
      return `Failed: ${step.text}`
  }
}

const uploadProblems: Record<UploadFailureCode | 'unreachable', string> = {
  too_big: 'The file is too big (the limit is 64 MB).',
  no_form: 'The dialog is no longer open.',
  refused: 'This list takes no file right now.',
  busy: 'The console is busy. Try again in a moment.',
  no_room: 'There is no room for more files. Those that were sent are removed after a week.',
  no_audit: 'The audit log cannot be written, so nothing can be changed.',
  unreachable: 'The console could not be reached.',
}

const failures: Record<FailureCode, string> = {
  bad_request: 'The console did not understand the request. Reload the page and try again.',
  wrong_secret: 'This is not the set-up secret. It was printed when the console was started.',
  wrong_password: 'The account or the password is wrong.',
  weak_password: 'The password needs at least 12 characters.',
  common_password: 'This is one of the passwords that are guessed first, or made of the account’s name. Choose another one.',
  already_set_up: 'The console has been set up already. Sign in instead.',
  too_many_tries: 'There were too many tries.',
  too_many_sessions: 'Too many people are signed in at the moment. Try again later.',
  not_saved: 'The account could not be saved. Can the console write to its folder?',
  forbidden: 'The console does not accept requests from this address. Open it under the address that it printed.',
  signed_out: 'You are not signed in.',
  ...uploadProblems,
}

const refusals: Record<Refusal['code'], string> = {
  refused: 'This can’t be done right now',
  unfit: 'Something in the form does not fit',
  no_form: 'This dialog is no longer open',
  malformed: 'The console did not understand the last step',
  unknown_page: 'There is no such page',
  busy: 'Another action is still running',
  no_audit: 'The audit log cannot be written, so nothing can be changed',
  not_recorded: 'The audit log cannot be written: what was done is not recorded',
  not_connected: 'Not connected: nothing was sent',
  too_long: 'The text is too long and was not sent (the limit is 1 MB)',
}

export const en = {
  code: 'en',
  number: (value: number): string => number.format(value),
  /** The text with its long numbers as people write them. */
  numbersIn: (text: string): string => text.replace(/\b[1-9]\d{3,14}\b/g, digits => number.format(Number(digits))),

  skipToContent: 'Skip to the page',
  loading: 'Loading…',
  chartAsTable: 'As a table',
  chartEmpty: 'Nothing in this period',
  chartLabel: 'Time',
  menu: 'Menu',
  closeMenu: 'Close the menu',
  navigation: 'Pages',
  search: 'Search',
  signOut: 'Sign out',
  signedInAs: (account: string): string => `Signed in as ${account}`,
  version: (version: string): string => `Version ${version}`,
  theme: 'Appearance',
  languages: { english: 'Language: English', german: 'Language: German (Deutsch)' },
  themes: { auto: 'Automatic', light: 'Light', dark: 'Dark' },

  signIn: 'Sign in',
  signInLead: 'Administration console',
  account: 'Account',
  password: 'Password',
  showPassword: 'Show',
  hidePassword: 'Hide',
  setUp: 'Set up the console',
  setUpLead: 'Choose the account that administers this proxy.',
  secret: 'Set-up secret',
  secretHelp: 'It was printed in the terminal when the console was started.',
  accountHelp: 'You sign in with this name.',
  newPassword: 'New password',
  passwordHelp: 'At least 12 characters. A few words that only you know make a good one.',
  repeatPassword: 'Repeat the new password',
  oldPassword: 'Current password',
  changePassword: 'Change password',
  wrongOldPassword: 'The current password is wrong.',
  passwordChanged: 'The password has been changed',
  passwordsDiffer: 'The two passwords are not the same.',
  required: 'This is needed.',
  finishSetUp: 'Set up and sign in',
  working: 'One moment…',
  failures,
  retryIn: (seconds: number): string => `Try again in ${plural(seconds, 'second', 'seconds')}.`,
  unreachable: 'The console can’t be reached',
  unreachableText: 'Is it still running? The page tries again by itself.',
  tryNow: 'Try now',
  sessionEnded: 'Your session has ended',
  sessionEndedText: 'You were signed out, or nothing happened for a while. What was saved is safe.',
  signInAgain: 'Sign in again',
  replaced: 'The console is open elsewhere',
  replacedText: 'The console of this tab was opened in another tab or window. Only one of them can use it at a time.',
  useHere: 'Use it here',
  tooManyTabs: 'Too many tabs are open',
  tooManyTabsText: 'This console has as many tabs as it allows. Close one of the others; tabs whose line was lost are given up after 15 minutes.',
  renewedConsole: 'This tab was away for too long and has been set up anew. What you had typed is offered again at its field.',

  connectionLost: 'Connection lost. Trying again…',
  reconnect: 'Try now',
  refusals,

  palette: 'Search pages, settings and entries',
  palettePlaceholder: 'Search pages, settings and entries…',
  paletteSearching: 'Searching the lists…',
  paletteEmpty: (query: string): string => `Nothing found for “${query}”`,
  paletteLookUp: (what: string): string => `Look up “${what}”`,
  paletteHits: (count: number): string => plural(count, 'result', 'results'),
  paletteHint: { move: 'move', open: 'open', close: 'close' },
  pageHit: 'Page',

  entries: (count: number): string => plural(count, 'entry', 'entries'),
  ofEntries: (shown: number, total: number): string => `${number.format(shown)} of ${number.format(total)}`,
  rowOf: (row: number, total: number): string => `Row ${number.format(row)} of ${number.format(total)}`,
  filter: 'Filter',
  filterList: (list: string): string => `Filter ${list}`.trim(),
  clearFilter: 'Clear the filter',
  order: 'Order',
  orderOf: (list: string): string => `Order of ${list}`.trim(),
  orders: { listed: 'Unsorted', added: 'As added', text: 'A to Z', domain: 'By domain' },
  addedRow: 'added',
  addedAt: (row: number, total: number): string => `Added as row ${number.format(row)} of ${number.format(total)}`,
  chooseSeveral: 'Choose several',
  chosenRows: (count: number): string => `${number.format(count)} chosen`,
  removeRows: 'Remove',
  missing: (name: string, isList: boolean, hasList: boolean): string =>
    isList ? `Choose an entry of “${name}” first.` : hasList ? `Fill in “${name}” or choose an entry first.` : `Fill in “${name}” first.`,
  listChanged: 'This list has been changed elsewhere.',
  reloadList: 'Reload',
  draft: (at: Date, of: string): string =>
    of === '' ? `You have unsaved text of ${timeText('en', at)}:` : `You have unsaved text for “${of}” of ${timeText('en', at)}; choose that to get it back:`,
  restoreDraft: 'Restore',
  discardDraft: 'Discard',
  forgetDrafts: (count: number): string => `Forget ${plural(count, 'unsaved text', 'unsaved texts')} on this device`,
  emptyList: 'No entries',
  emptyListDrop: 'No entries. Add one, or drop a text file here.',
  noMatch: 'Nothing matches the filter',
  /** Where there is little room; the exact time is told beside it. */
  briefTime: (seconds: number): string => briefTime.format(seconds * 1000),
  time: (seconds: number): string => time.format(seconds * 1000),
  severities: { bad: 'Urgent', warning: 'Warning', unknown: 'Unknown' },
  done: 'Done',
  open: 'Open',
  verdicts: { rejected: 'Rejected', allowed: 'Allowed', neutral: 'Neutral' },
  sortBy: (column: string): string => `Order by ${column}`,
  columnWidth: (column: string): string => `Width of the column ${column}`,
  columnWidthTip: 'Drag the edge, or use the arrow keys; a double click fits the column to what it holds',
  rowCount: (count: number, more: boolean): string => (more ? `more than ${plural(count, 'row', 'rows')}` : plural(count, 'row', 'rows')),
  noRows: 'No rows',
  lookUp: 'Look up',
  tooManyChosen: (most: number): string => `No more than ${number.format(most)} rows can be chosen at once`,
  list: 'List',
  example: (text: string): string => `e.g. ${text}`,
  emptyRow: '(empty)',
  fullText: 'Full text',
  copy: 'Copy',
  copied: 'Copied',
  close: 'Close',
  openChoices: 'Show the choices',
  help: (caption: string): string => `About ${caption}`,
  position: (value: number, min: number, max: number): string =>
    `${number.format(value)} (${number.format(min)}–${number.format(max)})`,
  emptyPage: 'This page has nothing to show.',

  ok: 'OK',
  cancel: 'Cancel',
  critical: 'Error',
  question: 'Question',
  warning: 'Warning',
  information: 'Information',

  busy: 'Working…',
  busyProgress: (done: number, total: number): string => `${number.format(done)} of ${number.format(total)}`,

  activity: 'Activity',
  activityButton: (failures: number): string =>
    failures > 0 ? `Activity, ${plural(failures, 'new failure', 'new failures')}` : 'Activity',
  activityLead: 'What every action wrote, and what failed.',
  failuresOnly: 'Failures only',
  noActivity: 'Nothing has been written yet.',
  noFailures: 'No step has failed.',
  searchingFailures: 'Searching…',
  outcome: { ok: 'Done', failed: 'Failed' },
  activityDetail: 'Entry',
  showActivity: 'Details',
  dismiss: 'Dismiss',
  notices: 'Notices',
  times: (count: number): string => `×${number.format(count)}`,

  terminals: 'Programs',
  terminalRunning: 'Running',
  terminalEnded: (status: number): string => `Ended with status ${status}`,
  terminalKilled: (signal: number): string => `Ended by signal ${signal}`,
  terminalLeave: 'leaves the terminal',
  terminalCopy: 'Copy the selection, or everything',
  terminalClose: (title: string): string => `Close ${title}`,
  terminalHeight: 'Height of the programs',
  terminalInput: (title: string): string => `Terminal: ${title}`,
  terminalFailed: 'The terminal could not be loaded. Reload the page.',

  sourceKeys: 'Tab indents; Esc, then Tab leaves the editor. Ctrl+F searches.',
  marks: (count: number): string => plural(count, 'problem', 'problems'),
  markPlace: (name: string, line: number, column: number): string =>
    line > 0 ? `${name}, line ${number.format(line)}, column ${number.format(column)}` : name,
  /** The editor library's texts, under its own names for them. */
  sourcePhrases: {
    Find: 'Find',
    Replace: 'Replace with',
    next: 'Next',
    previous: 'Previous',
    all: 'Select all',
    'match case': 'Match case',
    regexp: 'Regular expression',
    'by word': 'Whole words',
    replace: 'Replace',
    'replace all': 'Replace all',
    close: 'Close',
    'current match': 'current match',
    'on line': 'on line',
    'replaced match on line $': 'replaced match on line $',
    'replaced $ matches': 'replaced $ matches',
    'Go to line': 'Go to line',
    go: 'Go',
    'Control character': 'Control character',
    'Selection deleted': 'Selection deleted',
  },

  uploadDrop: 'Drop the file here',
  fromMyComputer: 'From my computer…',
  fromMyComputerNote: 'Or drop a text file here: one entry a line.',
  toMyComputer: 'To my computer',
  toMyComputerNote: (name: string): string => `${name} is downloaded at once: one entry a line.`,
  importDropped: (file: string, list: string): string => `Import “${file}” into “${list}”?`,
  dropOnList: (list: string): string => `Drop the file here: ${list}`,
  uploading: (name: string): string => `Sending ${name}`,
  uploadWaiting: (name: string): string => `${name} is being taken over`,
  uploadCancel: 'Stop sending',
  uploaded: (name: string): string => `${name} was sent`,
  uploadedAs: (name: string, kept: string): string => `${name} was sent, and kept as ${kept}`,
  uploadOne: 'Only the first file was taken: a list takes one at a time.',
  uploadFailed: (name: string): string => `${name} was not sent`,
  uploadProblem: (problem: UploadProblem): string => ({ ...failures, ...uploadProblems })[problem],

  fileOffered: (name: string): string => `Ready: ${name}`,
  fileSent: (name: string, size: string): string => `Downloaded: ${name} (${size})`,
  download: (name: string): string => `Download ${name}`,
  downloadShort: 'Download',
  files: 'Files for you',
  fileFetched: 'Fetched',
  size: (bytes: number): string => sizeText(bytes, number),

  toast: (summary: Summary): string => {
    if (summary.failed) {
      if (summary.total === 1 && summary.lead) return failureStep(summary.lead)
      if (!summary.lead || summary.lead.kind === 'statement') {
        return `${plural(summary.total, 'step run', 'steps run')}, ${number.format(summary.failures)} failed`
      }
      const lead = failureStep(summary.lead)
      return `${lead} (${number.format(summary.failures)} of ${plural(summary.total, 'step', 'steps')} failed)`
    }
    const parts = summary.others.map(other => counted(other.kind, other.count))
    return [...(summary.lead ? [told(summary.lead)] : []), ...parts].join(', ')
  },
}

export type Messages = typeof en
