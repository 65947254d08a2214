// The made-up pages: descriptions and what their events do.

const box = (caption, toolTip, value = 0) => ({ kind: 'CheckBox', caption, toolTip, value, enabled: true, visible: true })
const button = (caption, toolTip) => ({ kind: 'Button', caption, toolTip, enabled: true, visible: true })
const text = (label, more = {}) => ({ kind: 'TextField', label, text: '', multiLine: false, fixedPitch: false, secret: false, enabled: true, visible: true, ...more })
const label = (caption, more = {}) => ({ kind: 'Label', caption, enabled: true, visible: true, ...more })
const frame = caption => ({ kind: 'Frame', caption, enabled: true, visible: true })
const list = (rows, more = {}) => ({ kind: 'ListBox', rows, index: -1, enabled: true, visible: true, ...more })
const node = control => ({ control })

const words = ['mail', 'relay', 'news', 'offers', 'smtp', 'mx', 'out', 'bulk', 'cheap', 'pharma', 'casino', 'bank', 'update', 'secure']
const ends = ['example', 'test', 'invalid', 'example.net', 'example.org']
const domain = n => `${words[n % words.length]}${n}.${words[(n * 7) % words.length]}-${words[(n * 3) % words.length]}.${ends[n % ends.length]}`
const rows = (count, make) => {
  const made = new Array(count)
  for (let n = 0; n < count; ++n) made[n] = make(n)
  return made
}

export const hostileRows = [
  '<b>bold</b><script>alert(1)</script>',
  '<img src=x onerror=alert(1)>',
  'line one\nline two\r\nwith\ttab and \u0000 zero',
  'مرحبا بالعالم example.com',
  '\u202Egnp.exe\u202C right-to-left override',
  'שלום עולם — mixed with English and 123',
  '\u001b[31mred\u001b[0m bell \u0007',
  '',
  '   leading and trailing   ',
  'x'.repeat(5000),
  'A very long subject that goes on and on, telling about prizes, medicine and inheritances until nobody reads any further '.repeat(8),
  'z͑ͫ̓ͪ̂ͫ̽͏̴̙̤̞͉͚̯̞̠͍A̴̵̜̰͔ͫ͗͢L̠ͨͧͩ͘G̴̻͈͍͔̹̑͗̎̅͛́Ǫ̵̹̻̝̳͂̌̌͘!͖̬̰̙̗̿̋ͥͥ̂ͣ̐́́͜͞',
  '😀👩‍👩‍👧‍👦 family \ufeff\u200bzero width',
  '{{7*7}} ${7*7} &lt;escaped&gt; &amp;',
]

const switches = [
  ['mx', 'Check the MX record of the sender', 'The domain of the sender must name a mail exchanger.'],
  ['spf', 'Check the SPF record', 'Mail from hosts that the domain does not allow is refused.'],
  ['rbl', 'Ask DNS block lists'],
  ['surbl', 'Look up links in messages', 'Every link of a message is looked up in the URL lists.'],
  ['bw', 'Use the white and black lists'],
  ['helo', 'Check the HELO name', 'Refuses hosts that greet with our own name or address.'],
  ['ptr', 'Require a reverse name'],
  ['grey', 'Greylisting', 'Unknown triplets are refused for a while.'],
  ['tarpit', 'Slow down after errors'],
  ['real', 'Check the recipients in the directory', 'Needs the directory component.'],
  ['keyw', 'Search subjects for keywords'],
  ['body', 'Search bodies for keywords'],
  ['attach', 'Block attachments by extension'],
  ['virus', 'Scan for viruses', 'Messages are handed to the scanner before delivery.'],
  ['archive', 'Keep an archive of mails'],
  ['quarantine', 'Quarantine instead of refusing', 'The quarantine folder must exist.'],
  ['logip', 'Log connections'],
  ['logpre', 'Log data commands'],
  ['autoimport', 'Import lists automatically', 'Files named addblack.txt and addwhite.txt are read every hour.'],
  ['stat', 'Count statistics'],
]

export function makePages(german) {
  const general = {
    name: 'general',
    group: german ? 'Einstellungen' : 'Settings',
    title: german ? 'Allgemein' : 'General',
    controls: {
      FrameA: frame('Checks of the sender'),
      FrameB: frame('Contents'),
      FrameC: frame('Logs and lists'),
      Lang: label('Language'),
      language: { kind: 'ComboBox', rows: ['english', 'german'], label: 'Lang', text: german ? 'german' : 'english', index: german ? 1 : 0, editable: false, enabled: true, visible: true, toolTip: 'The language of the console and of the answers to other servers.' },
      Command1: button('Reload the proxy', 'Tells the running proxy to read its settings again.'),
      ...Object.fromEntries(switches.map(([name, caption, tip], n) => [name, box(caption, tip, n % 3 === 0 ? 1 : 0)])),
    },
    layout: {
      column: [
        { frame: 'FrameA', content: { grid: switches.slice(0, 9).map(([name]) => node(name)) } },
        { frame: 'FrameB', content: { grid: switches.slice(9, 16).map(([name]) => node(name)) } },
        { frame: 'FrameC', content: { grid: switches.slice(16).map(([name]) => node(name)) } },
        { row: [node('language'), node('Command1')] },
      ],
    },
  }
  general.controls.real.enabled = false

  const domains = {
    name: 'domainbw',
    group: german ? 'Listen' : 'Lists',
    title: german ? 'Domänenlisten' : 'Domain lists',
    controls: {
      LabelB: label('Black list'),
      LabelW: label('White list'),
      LabelE: label('Domain or part of a domain'),
      List1: list(rows(20000, domain), { label: 'LabelB' }),
      List2: list(rows(4321, n => domain(n * 13 + 5)), { label: 'LabelW' }),
      Text1: text('LabelE', { placeholder: 'example.com', toolTip: 'A part of a domain matches every domain that ends in it.' }),
      add1: button('Add to black list'),
      add2: button('Add to white list'),
      remove: button('Remove the selected', 'Removes the selected entry from its list.'),
      transfer: button('Import / export…'),
      s1: box('Use the black list', 'Mail from these domains is refused.', 1),
      s2: box('Use the white list', '', 1),
      s3: box('Compare subdomains too'),
      s4: box('Check the HELO name as well'),
      s5: box('Log hits', 'Each hit is written to the connection log.'),
    },
    layout: {
      column: [
        { row: [node('Text1'), node('add1'), node('add2'), node('remove'), node('transfer')] },
        { row: [{ control: 'List1', grow: true }, { control: 'List2', grow: true }], grow: true },
        { grid: ['s1', 's2', 's3', 's4', 's5'].map(node) },
      ],
    },
  }

  const fields = ['From', 'To', 'Subject', 'Date', 'Address', 'HELO', 'Reverse name', 'MX', 'Reason', 'Size', 'Score', 'Charset', 'Country', 'SPF', 'Caller-ID', 'Virus', 'Attachment', 'Folder', 'Archive', 'Message-ID']
  const log = {
    name: 'iplog',
    group: german ? 'Protokolle' : 'Logs',
    title: german ? 'Verbindungen' : 'Connections',
    controls: {
      LabelL: label('Connections'),
      List1: list(rows(3000, n => `21.11.2026 0${n % 10}:1${n % 6}:2${n % 10}  192.0.2.${n % 255}  ${domain(n)}  ${n % 4 ? 'refused: black list' : 'accepted'}`), { label: 'LabelL' }),
      refresh: button('Refresh'),
      clear: button('Clear from log', 'Removes the chosen row.'),
      auto: box('Refresh by itself'),
      ...Object.fromEntries(fields.flatMap((name, n) => [[`F${n}`, text(`L${n}`)], [`L${n}`, label(name)]])),
    },
    layout: {
      row: [
        { column: [{ control: 'List1', grow: true }, { row: [node('refresh'), node('clear'), node('auto')] }], grow: true },
        { grid: fields.map((_, n) => node(`F${n}`)) },
      ],
    },
  }

  const everything = {
    name: 'everything',
    group: german ? 'Probe' : 'Trial',
    title: german ? 'Alle Steuerelemente' : 'All controls',
    controls: {
      Options: frame('Options'),
      Texts: frame('Texts'),
      Lists: frame('Lists'),
      Actions: frame('Actions'),
      o1: { kind: 'OptionButton', caption: 'Refuse', value: 1, group: 'how', enabled: true, visible: true, toolTip: 'The mail is refused while the connection is open.' },
      o2: { kind: 'OptionButton', caption: 'Mark the subject', value: 0, group: 'how', enabled: true, visible: true },
      o3: { kind: 'OptionButton', caption: 'Quarantine', value: 0, group: 'how', enabled: true, visible: true },
      c1: box('A single check box', 'It stands outside a grid.'),
      hidden: box('Never seen'),
      Note: label('Status: running\nsince 04:00, two sessions'),
      t1: text('', { placeholder: 'No label, a placeholder' }),
      LP: label('Password of the directory'),
      secret: text('LP', { secret: true, text: 'hunter2hunter2' }),
      LM: label('Greeting'),
      multi: text('LM', { multiLine: true, text: 'Welcome.\nThis proxy refuses spam.' }),
      LF: label('Script'),
      fixed: text('LF', { multiLine: true, fixedPitch: true, source: true, marks: [{ name: 'Check', line: 3, column: 9, text: 'Type mismatch', elsewhere: false }], text: 'Function Check(mail)\n    If InStr(mail, "spam") Then\n        Check = True\n    End If\nEnd Function\n' }),
      LD: label('Locked'),
      locked: text('LD', { text: 'cannot be changed', enabled: false }),
      LC: label('Editable choice'),
      combo: { kind: 'ComboBox', rows: rows(500, n => `extension ${n}`), label: 'LC', text: '.exe', index: -1, editable: true, enabled: true, visible: true, toolTip: 'Type an extension or choose one.' },
      LS: label('Size limit'),
      bar: { kind: 'ScrollBar', label: 'LS', min: 0, max: 250, value: 40, enabled: true, visible: true },
      LH: label('Hostile rows'),
      hostile: list(hostileRows, { label: 'LH' }),
      LE: label('Empty list'),
      empty: list([], { label: 'LE' }),
      LDr: label('Drives'),
      drives: { kind: 'DriveList', rows: ['/', '/srv'], index: 0, label: 'LDr', enabled: true, visible: true },
      LFo: label('Folders'),
      folders: { kind: 'FolderList', rows: ['..', 'archive', 'download', 'scripts'], index: -1, label: 'LFo', enabled: true, visible: true },
      LFi: label('Files'),
      files: { kind: 'FileList', rows: rows(40, n => `list${n}.txt`), index: -1, label: 'LFi', enabled: true, visible: true },
      boxes: button('Message box', 'Opens a message box.'),
      ask: button('Question'),
      slow: button('Slow action', 'Works for some seconds.'),
      fail: button('Failing statements'),
      many: button('Ten thousand statements'),
      modal: button('Modal dialog'),
      modeless: button('Modeless dialog'),
      program: button('Start a program'),
      endless: button('Endless program'),
      offer: button('Offer a file'),
      off: { ...button('Disabled'), enabled: false },
    },
    layout: {
      column: [
        { row: [{ frame: 'Options', content: { column: [node('o1'), node('o2'), node('o3'), node('c1'), node('hidden'), node('Note')] } }, { frame: 'Texts', content: { column: [node('t1'), node('secret'), node('locked'), node('combo'), node('bar')] } }] },
        { row: [node('multi'), node('fixed')] },
        { frame: 'Lists', content: { column: [{ row: [node('hostile'), node('empty')] }, { row: [node('drives'), node('folders'), node('files')] }] } },
        { frame: 'Actions', content: { row: ['boxes', 'ask', 'slow', 'fail', 'many', 'modal', 'modeless', 'program', 'endless', 'offer', 'off'].map(node) } },
      ],
    },
  }

  const million = {
    name: 'million',
    group: german ? 'Probe' : 'Trial',
    title: german ? 'Eine Million' : 'One million',
    controls: { LL: label('Entries'), big: list(rows(1_000_000, domain), { label: 'LL' }), refill: button('Refill') },
    layout: { column: [{ control: 'big', grow: true }, node('refill')] },
  }

  const others = ['Texts', 'SPF and Caller-ID', 'POP3 wrapper', 'IP lists', 'Local domains', 'E-mail addresses', 'Keywords', 'Subnets', 'Exceptions', 'Block lists', 'Word replacement', 'File scanner'].map((title, n) => ({
    name: `other${n}`,
    group: n < 3 ? general.group : domains.group,
    title,
    controls: { only: label(`The page ${title} is not part of the trial.`) },
    layout: { column: [node('only')] },
  }))
  return [general, ...others.slice(0, 3), domains, ...others.slice(3), log, everything, million]
}

export const dialogs = {
  transfer: {
    caption: 'Import and export',
    controls: {
      Direction: frame('Direction'),
      imp: { kind: 'OptionButton', caption: 'Import', value: 0, group: 'direction', enabled: true, visible: true },
      exp: { kind: 'OptionButton', caption: 'Export', value: 1, group: 'direction', enabled: true, visible: true },
      LF: label('File'),
      source: text('LF', { text: '/var/lib/zrlconsole/download/black.txt' }),
      LD: label('Folders'),
      folders: { kind: 'FolderList', rows: ['..', 'download', 'archive'], index: -1, label: 'LD', enabled: true, visible: true },
      LL: label('Files'),
      files: { kind: 'FileList', rows: rows(200, n => `black${n}.txt`), index: -1, label: 'LL', enabled: true, visible: true },
      overwrite: box('Replace an existing file'),
      start: button('Start'),
    },
    layout: {
      column: [
        { frame: 'Direction', content: { row: [node('imp'), node('exp')] } },
        node('source'),
        { row: [node('folders'), node('files')] },
        { row: [node('overwrite'), node('start')] },
      ],
    },
  },
}
