import type { Step } from '../model/toast-text'
import type { UploadFailureCode } from '../wire/protocol'
import type { Messages } from './en'
import { briefForm, clockForm, clockLanguage } from './clock'
import { sizeText } from './size'
import { timeText } from './time'

const number = new Intl.NumberFormat('de')
const time = new Intl.DateTimeFormat(clockLanguage('de'), clockForm)
const briefTime = new Intl.DateTimeFormat(clockLanguage('de'), briefForm)
const plural = (count: number, one: string, many: string): string => `${number.format(count)} ${count === 1 ? one : many}`

const counted = (kind: Step['kind'], count: number): string => {
  switch (kind) {
    case 'set':
      return plural(count, 'weiterer Wert gesetzt', 'weitere Werte gesetzt')
    case 'delete':
      return plural(count, 'Wert gelöscht', 'Werte gelöscht')
    case 'statement':
      return plural(count, 'Anweisung ausgeführt', 'Anweisungen ausgeführt')
    case 'component':
      return plural(count, 'Listenvorgang', 'Listenvorgänge')
    case 'program':
      return plural(count, 'Programm gestartet', 'Programme gestartet')
    case 'file':
      return plural(count, 'Datei geschrieben', 'Dateien geschrieben')
    case 'other':
      return plural(count, 'weiterer Schritt', 'weitere Schritte')
  }
}

const told = (step: Step): string => {
  switch (step.kind) {
    case 'set': {
      const what = step.what === 'option' ? 'Option' : 'Registrierungswert'
      return step.value === '' ? `${what} ${step.name} geleert` : `${what} ${step.name} auf ${step.value} gesetzt`
    }
    case 'delete':
      return `Registrierungswert ${step.name} gelöscht`
    case 'statement':
      return '1 Anweisung ausgeführt'
    case 'component':
      return `Erledigt: ${step.text}`
    case 'program':
      return `Gestartet: ${step.text}`
    case 'file':
      return `Geschrieben: ${step.text}`
    case 'other':
      return step.text
  }
}

const failureStep = (step: Step): string => {
  switch (step.kind) {
    case 'set':
      return `${step.what === 'option' ? 'Option' : 'Registrierungswert'} ${step.name} wurde nicht gesetzt`
    case 'delete':
      return `Registrierungswert ${step.name} wurde nicht gelöscht`
    case 'statement':
      return 'Eine Anweisung ist fehlgeschlagen'
    case 'component':
      return `Fehlgeschlagen: ${step.text}`
    case 'program':
      return `Nicht gestartet: ${step.text}`
    case 'file':
      return `Nicht geschrieben: ${step.text}`
    case 'other':
      return `Fehlgeschlagen: ${step.text}`
  }
}

const uploadProblems: Record<UploadFailureCode | 'unreachable', string> = {
  too_big: 'Die Datei ist zu groß (höchstens 64 MB).',
  no_form: 'Der Dialog ist nicht mehr geöffnet.',
  refused: 'Diese Liste nimmt im Moment keine Datei an.',
  busy: 'Die Konsole ist beschäftigt. Versuchen Sie es gleich noch einmal.',
  no_room: 'Für weitere Dateien ist kein Platz. Übertragene werden nach einer Woche entfernt.',
  no_audit: 'Das Protokoll der Änderungen kann nicht geschrieben werden, deshalb lässt sich nichts ändern.',
  unreachable: 'Die Konsole war nicht erreichbar.',
}

export const de: Messages = {
  code: 'de',
  number: value => number.format(value),
  numbersIn: text => text.replace(/\b[1-9]\d{3,14}\b/g, digits => number.format(Number(digits))),

  skipToContent: 'Zum Inhalt springen',
  loading: 'Wird geladen…',
  chartAsTable: 'Als Tabelle',
  chartEmpty: 'Nichts in diesem Zeitraum',
  chartLabel: 'Zeit',
  menu: 'Menü',
  closeMenu: 'Menü schließen',
  navigation: 'Seiten',
  search: 'Suchen',
  signOut: 'Abmelden',
  signedInAs: account => `Angemeldet als ${account}`,
  version: version => `Version ${version}`,
  theme: 'Darstellung',
  languages: { english: 'Sprache: Englisch (English)', german: 'Sprache: Deutsch' },
  themes: { auto: 'Automatisch', light: 'Hell', dark: 'Dunkel' },

  signIn: 'Anmelden',
  signInLead: 'Verwaltungskonsole',
  account: 'Konto',
  password: 'Passwort',
  showPassword: 'Anzeigen',
  hidePassword: 'Verbergen',
  setUp: 'Konsole einrichten',
  setUpLead: 'Legen Sie das Konto fest, das diesen Proxy verwaltet.',
  secret: 'Einrichtungsschlüssel',
  secretHelp: 'Er wurde beim Start der Konsole im Terminal ausgegeben.',
  accountHelp: 'Mit diesem Namen melden Sie sich an.',
  newPassword: 'Neues Passwort',
  passwordHelp: 'Mindestens 12 Zeichen. Gut eignen sich einige Wörter, die nur Sie kennen.',
  repeatPassword: 'Neues Passwort wiederholen',
  oldPassword: 'Aktuelles Passwort',
  changePassword: 'Passwort ändern',
  wrongOldPassword: 'Das aktuelle Passwort ist falsch.',
  passwordChanged: 'Das Passwort wurde geändert',
  passwordsDiffer: 'Die beiden Passwörter stimmen nicht überein.',
  required: 'Diese Angabe fehlt.',
  finishSetUp: 'Einrichten und anmelden',
  working: 'Einen Moment…',
  failures: {
    bad_request: 'Die Konsole hat die Anfrage nicht verstanden. Laden Sie die Seite neu und versuchen Sie es noch einmal.',
    wrong_secret: 'Das ist nicht der Einrichtungsschlüssel. Er wurde beim Start der Konsole ausgegeben.',
    wrong_password: 'Konto oder Passwort ist falsch.',
    weak_password: 'Das Passwort braucht mindestens 12 Zeichen.',
    common_password: 'Dieses Passwort gehört zu denen, die zuerst erraten werden, oder besteht aus dem Namen des Kontos. Wählen Sie ein anderes.',
    already_set_up: 'Die Konsole ist schon eingerichtet. Melden Sie sich stattdessen an.',
    too_many_tries: 'Es gab zu viele Versuche.',
    too_many_sessions: 'Zurzeit sind zu viele Personen angemeldet. Versuchen Sie es später noch einmal.',
    not_saved: 'Das Konto konnte nicht gespeichert werden. Darf die Konsole in ihren Ordner schreiben?',
    forbidden: 'Die Konsole nimmt von dieser Adresse keine Anfragen an. Öffnen Sie sie unter der Adresse, die sie ausgegeben hat.',
    signed_out: 'Sie sind nicht angemeldet.',
    ...uploadProblems,
  },
  retryIn: seconds => `Neuer Versuch in ${plural(seconds, 'Sekunde', 'Sekunden')} möglich.`,
  unreachable: 'Die Konsole ist nicht erreichbar',
  unreachableText: 'Läuft sie noch? Die Seite versucht es von selbst weiter.',
  tryNow: 'Jetzt versuchen',
  sessionEnded: 'Ihre Sitzung ist beendet',
  sessionEndedText: 'Sie wurden abgemeldet, oder es ist längere Zeit nichts geschehen. Gespeichertes ist sicher.',
  signInAgain: 'Wieder anmelden',
  replaced: 'Die Konsole ist anderswo geöffnet',
  replacedText: 'Die Konsole dieses Tabs wurde in einem anderen Tab oder Fenster geöffnet. Nur eines davon kann sie benutzen.',
  useHere: 'Hier benutzen',
  tooManyTabs: 'Zu viele Tabs sind offen',
  tooManyTabsText: 'Diese Konsole hat so viele Tabs, wie sie erlaubt. Schließen Sie einen der anderen; Tabs, deren Verbindung verloren ist, werden nach 15 Minuten aufgegeben.',
  renewedConsole: 'Dieser Tab war zu lange fort und wurde neu eingerichtet. Was Sie getippt hatten, wird an seinem Feld wieder angeboten.',

  connectionLost: 'Verbindung unterbrochen. Neuer Versuch läuft…',
  reconnect: 'Jetzt versuchen',
  refusals: {
    refused: 'Das ist im Moment nicht möglich',
    unfit: 'Etwas im Formular passt nicht',
    no_form: 'Dieser Dialog ist nicht mehr geöffnet',
    malformed: 'Die Konsole hat den letzten Schritt nicht verstanden',
    unknown_page: 'Diese Seite gibt es nicht',
    busy: 'Ein anderer Vorgang läuft noch',
    no_audit: 'Das Protokoll der Änderungen kann nicht geschrieben werden, deshalb lässt sich nichts ändern',
    not_recorded: 'Das Protokoll der Änderungen kann nicht geschrieben werden: Was geschah, steht nicht darin',
    not_connected: 'Keine Verbindung: Es wurde nichts gesendet',
    too_long: 'Der Text ist zu lang und wurde nicht gesendet (höchstens 1 MB)',
  },

  palette: 'Seiten, Einstellungen und Einträge durchsuchen',
  paletteSearching: 'Die Listen werden durchsucht …',
  palettePlaceholder: 'Seiten, Einstellungen und Einträge durchsuchen …',
  paletteEmpty: query => `Nichts gefunden für „${query}“`,
  paletteLookUp: what => `„${what}“ nachschlagen`,
  paletteHits: count => plural(count, 'Treffer', 'Treffer'),
  paletteHint: { move: 'bewegen', open: 'öffnen', close: 'schließen' },
  pageHit: 'Seite',

  entries: count => plural(count, 'Eintrag', 'Einträge'),
  ofEntries: (shown, total) => `${number.format(shown)} von ${number.format(total)}`,
  rowOf: (row, total) => `Zeile ${number.format(row)} von ${number.format(total)}`,
  filter: 'Filtern',
  filterList: list => `${list} filtern`.trim(),
  clearFilter: 'Filter löschen',
  order: 'Reihenfolge',
  orderOf: list => `Reihenfolge von ${list}`.trim(),
  orders: { listed: 'Unsortiert', added: 'Wie hinzugefügt', text: 'A bis Z', domain: 'Nach Domäne' },
  addedRow: 'hinzugefügt',
  addedAt: (row, total) => `Als Zeile ${number.format(row)} von ${number.format(total)} hinzugefügt`,
  chooseSeveral: 'Mehrere auswählen',
  chosenRows: count => `${number.format(count)} ausgewählt`,
  removeRows: 'Entfernen',
  missing: (name, isList, hasList) =>
    isList
      ? `Zuerst einen Eintrag aus „${name}“ auswählen.`
      : hasList
        ? `Zuerst „${name}“ ausfüllen oder einen Eintrag auswählen.`
        : `Zuerst „${name}“ ausfüllen.`,
  listChanged: 'Diese Liste wurde anderswo geändert.',
  reloadList: 'Neu laden',
  draft: (at, of) =>
    of === '' ? `Sie haben ungespeicherten Text von ${timeText('de', at)}:` : `Sie haben ungespeicherten Text zu „${of}“ von ${timeText('de', at)}; wählen Sie das, um ihn zurückzuholen:`,
  restoreDraft: 'Wiederherstellen',
  discardDraft: 'Verwerfen',
  forgetDrafts: count => `${plural(count, 'ungespeicherten Text', 'ungespeicherte Texte')} auf diesem Gerät vergessen`,
  emptyList: 'Keine Einträge',
  emptyListDrop: 'Keine Einträge. Fügen Sie einen hinzu, oder legen Sie eine Textdatei hier ab.',
  noMatch: 'Nichts passt zum Filter',
  /** Where there is little room; the exact time is told beside it. */
  briefTime: (seconds: number): string => briefTime.format(seconds * 1000),
  time: (seconds: number): string => time.format(seconds * 1000),
  severities: { bad: 'Dringend', warning: 'Warnung', unknown: 'Unbekannt' },
  done: 'Erledigt',
  open: 'Offen',
  verdicts: { rejected: 'Abgewiesen', allowed: 'Erlaubt', neutral: 'Neutral' },
  sortBy: (column: string): string => `Nach ${column} ordnen`,
  columnWidth: (column: string): string => `Breite der Spalte ${column}`,
  columnWidthTip: 'Die Kante ziehen oder die Pfeiltasten benutzen; ein Doppelklick passt die Spalte ihrem Inhalt an',
  rowCount: (count: number, more: boolean): string => (more ? `mehr als ${plural(count, 'Zeile', 'Zeilen')}` : plural(count, 'Zeile', 'Zeilen')),
  noRows: 'Keine Zeilen',
  lookUp: 'Nachschlagen',
  tooManyChosen: (most: number): string => `Höchstens ${number.format(most)} Zeilen können zugleich ausgewählt sein`,
  list: 'Liste',
  example: text => `z. B. ${text}`,
  emptyRow: '(leer)',
  fullText: 'Ganzer Text',
  copy: 'Kopieren',
  copied: 'Kopiert',
  close: 'Schließen',
  openChoices: 'Auswahl anzeigen',
  help: caption => `Hinweis zu ${caption}`,
  position: (value, min, max) => `${number.format(value)} (${number.format(min)}–${number.format(max)})`,
  emptyPage: 'Auf dieser Seite gibt es nichts anzuzeigen.',

  ok: 'OK',
  cancel: 'Abbrechen',
  critical: 'Fehler',
  question: 'Frage',
  warning: 'Warnung',
  information: 'Hinweis',

  busy: 'In Arbeit…',
  busyProgress: (done, total) => `${number.format(done)} von ${number.format(total)}`,

  activity: 'Aktivität',
  activityButton: failures =>
    failures > 0 ? `Aktivität, ${plural(failures, 'neuer Fehler', 'neue Fehler')}` : 'Aktivität',
  activityLead: 'Was jeder Vorgang geschrieben hat und was fehlgeschlagen ist.',
  failuresOnly: 'Nur Fehler',
  noActivity: 'Es wurde noch nichts geschrieben.',
  noFailures: 'Kein Schritt ist fehlgeschlagen.',
  searchingFailures: 'Wird durchsucht…',
  outcome: { ok: 'Erledigt', failed: 'Fehlgeschlagen' },
  activityDetail: 'Eintrag',
  showActivity: 'Einzelheiten',
  dismiss: 'Ausblenden',
  notices: 'Meldungen',
  times: count => `×${number.format(count)}`,

  terminals: 'Programme',
  terminalRunning: 'Läuft',
  terminalEnded: status => `Beendet mit Status ${status}`,
  terminalKilled: signal => `Beendet durch Signal ${signal}`,
  terminalLeave: 'verlässt das Terminal',
  terminalCopy: 'Auswahl oder alles kopieren',
  terminalClose: title => `${title} schließen`,
  terminalHeight: 'Höhe der Programme',
  terminalInput: title => `Terminal: ${title}`,
  terminalFailed: 'Das Terminal konnte nicht geladen werden. Laden Sie die Seite neu.',

  sourceKeys: 'Tab rückt ein; Esc, dann Tab verlässt den Editor. Strg+F sucht.',
  marks: count => plural(count, 'Problem', 'Probleme'),
  markPlace: (name, line, column) =>
    line > 0 ? `${name}, Zeile ${number.format(line)}, Spalte ${number.format(column)}` : name,
  sourcePhrases: {
    Find: 'Suchen',
    Replace: 'Ersetzen durch',
    next: 'Weiter',
    previous: 'Zurück',
    all: 'Alle auswählen',
    'match case': 'Groß-/Kleinschreibung',
    regexp: 'Regulärer Ausdruck',
    'by word': 'Ganze Wörter',
    replace: 'Ersetzen',
    'replace all': 'Alle ersetzen',
    close: 'Schließen',
    'current match': 'aktueller Treffer',
    'on line': 'in Zeile',
    'replaced match on line $': 'Treffer in Zeile $ ersetzt',
    'replaced $ matches': '$ Treffer ersetzt',
    'Go to line': 'Gehe zu Zeile',
    go: 'Los',
    'Control character': 'Steuerzeichen',
    'Selection deleted': 'Auswahl gelöscht',
  },

  uploadDrop: 'Datei hier ablegen',
  fromMyComputer: 'Von meinem Rechner …',
  fromMyComputerNote: 'Oder eine Textdatei hier ablegen: ein Eintrag je Zeile.',
  toMyComputer: 'Auf meinen Rechner',
  toMyComputerNote: name => `${name} wird gleich heruntergeladen: ein Eintrag je Zeile.`,
  importDropped: (file, list) => `„${file}“ in „${list}“ importieren?`,
  dropOnList: list => `Datei hier ablegen: ${list}`,
  uploading: name => `${name} wird gesendet`,
  uploadWaiting: name => `${name} wird übernommen`,
  uploadCancel: 'Senden abbrechen',
  uploaded: name => `${name} wurde gesendet`,
  uploadedAs: (name, kept) => `${name} wurde gesendet und heißt jetzt ${kept}`,
  uploadOne: 'Nur die erste Datei wurde genommen: Eine Liste nimmt eine auf einmal.',
  uploadFailed: name => `${name} wurde nicht gesendet`,
  uploadProblem: problem => ({ ...de.failures, ...uploadProblems })[problem],

  fileOffered: name => `Bereit: ${name}`,
  fileSent: (name, size) => `Heruntergeladen: ${name} (${size})`,
  download: name => `${name} herunterladen`,
  downloadShort: 'Herunterladen',
  files: 'Dateien für Sie',
  fileFetched: 'Abgeholt',
  size: bytes => sizeText(bytes, number),

  toast: summary => {
    if (summary.failed) {
      if (summary.total === 1 && summary.lead) return failureStep(summary.lead)
      if (!summary.lead || summary.lead.kind === 'statement') {
        return `${plural(summary.total, 'Schritt', 'Schritte')} ausgeführt, ${number.format(summary.failures)} fehlgeschlagen`
      }
      const lead = failureStep(summary.lead)
      return `${lead} (${number.format(summary.failures)} von ${plural(summary.total, 'Schritt', 'Schritten')} fehlgeschlagen)`
    }
    const parts = summary.others.map(other => counted(other.kind, other.count))
    return [...(summary.lead ? [told(summary.lead)] : []), ...parts].join(', ')
  },
}
