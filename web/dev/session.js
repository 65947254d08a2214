// One mock session: the events of the made-up pages, and what the protocol says about lists, boxes, dialogs and the record.
import { dialogs, makePages } from './pages.js'
import { MockPrograms } from './programs.js'

const pause = ms => new Promise(resolve => setTimeout(resolve, ms))

class Form {
  constructor(name, description, dialog, modal) {
    Object.assign(this, { name, dialog, modal, caption: description.caption ?? description.title, layout: description.layout })
    this.controls = new Map(Object.entries(description.controls).map(([key, control]) => [key, { revision: 1, ...control }]))
    if (this.controls.has('hidden')) this.controls.get('hidden').visible = false
  }

  told(control) {
    const { rows, revision, ...members } = control
    return rows ? { ...members, items: { length: rows.length, revision } } : members
  }

  message() {
    const controls = Object.fromEntries([...this.controls].map(([key, control]) => [key, this.told(control)]))
    return { type: 'form', form: this.name, caption: this.caption, dialog: this.dialog, modal: this.modal, layout: this.layout, controls }
  }
}

export class MockSession {
  constructor(account, german) {
    this.account = account
    this.german = german
    this.pages = makePages(german)
    this.page = null
    this.dialogs = []
    this.record = []
    this.boxes = new Map()
    this.queue = Promise.resolve()
    this.filters = new Map()
    this.files = new Map()
    this.programs = new MockPrograms(message => this.send(message))
  }

  attach(socket) {
    this.socket?.close(4001)
    this.socket = socket
    this.ack = 0
    const pages = this.pages.map(({ name, group, title }) => ({ name, group, title }))
    this.send({ type: 'hello', account: this.account, language: this.german ? 'german' : 'english', product: 'Mirvan', version: '5.2', pages, open: this.page?.name ?? null })
    if (this.page) for (const form of [this.page, ...this.dialogs]) this.send(form.message())
    this.send({ type: 'files', files: [...this.files.values()].map(({ token, name, size }) => ({ token, name, size })) })
    this.programs.tellAll()
    socket.on('message', data => this.receive(JSON.parse(data)))
  }

  end(code) {
    this.socket?.close(code)
  }

  send(message) {
    if (this.socket?.readyState === 1) this.socket.send(JSON.stringify(message))
  }

  form(name) {
    return [this.page, ...this.dialogs].find(form => form?.name === name)
  }

  receive(message) {
    if (message.type === 'rows') return this.rows(message)
    if (message.type === 'answer') {
      this.boxes.get(message.id)?.(message.reply)
      this.boxes.delete(message.id)
      return
    }
    if (message.type === 'record') {
      const entries = this.record.slice(message.start, message.start + message.count)
      return this.send({ type: 'record', request: message.request, start: message.start, total: this.record.length, entries })
    }
    if (message.type === 'captions') return this.captions()
    if (this.programs.receive(message)) return
    const nested = this.dialogs.length > 0
    const run = () => this.handle(message).then(() => this.send({ type: 'done', seq: message.seq }))
    if (nested) void run()
    else this.queue = this.queue.then(run)
  }

  rows({ form, control, request, start, count, filter }) {
    const { rows, revision } = this.form(form)?.controls.get(control) ?? { rows: [], revision: 0 }
    const key = `${form}/${control}/${revision}/${filter}`
    let places = this.filters.get(key)
    if (filter !== '' && !places) {
      const wanted = filter.toLowerCase()
      places = []
      for (let n = 0; n < rows.length; ++n) if (rows[n].toLowerCase().includes(wanted)) places.push(n)
      this.filters.clear()
      this.filters.set(key, places)
    }
    const indexes = filter === '' ? undefined : places.slice(start, start + count)
    this.send({
      type: 'rows', form, control, request, revision, filter, start,
      length: filter === '' ? rows.length : places.length,
      rows: indexes ? indexes.map(n => rows[n]) : rows.slice(start, start + count),
      indexes,
    })
  }

  captions() {
    const pages = {}
    for (const page of this.pages) {
      pages[page.name] = Object.entries(page.controls).flatMap(([control, { caption, toolTip }]) =>
        [caption, toolTip].filter(Boolean).map(text => ({ control, text })))
    }
    this.send({ type: 'captions', pages })
  }

  change(form, name, members) {
    const control = form.controls.get(name)
    if (members.rows) members.revision = control.revision + 1
    Object.assign(control, members)
    this.send({ type: 'change', form: form.name, ack: this.ack, controls: { [name]: form.told({ ...members, revision: control.revision }) } })
  }

  wrote(entries) {
    const first = this.record.length
    const time = new Date().toTimeString().slice(0, 8)
    for (const [kind, text, error] of entries) this.record.push({ time, kind, text, ok: !error, error: error ?? '' })
    const failed = entries.filter(entry => entry[2]).length
    const shown = Math.max(first, this.record.length - 50)
    this.send({ type: 'activity', first: shown, total: this.record.length, failed, entries: this.record.slice(shown), page: this.page?.name })
  }

  uploaded(form, control, name) {
    const shown = this.form(form)
    const list = shown?.controls.get(control)
    if (list?.kind !== 'FileList') return null
    const kept = list.rows.includes(name) ? name.replace(/(\.\w+)?$/, ' (2)$1') : name
    this.change(shown, control, { rows: [kept], index: 0 })
    if (shown.controls.has('source')) this.change(shown, 'source', { text: `/var/lib/zrlconsole/upload/${kept}` })
    return kept
  }

  offer(name, content) {
    const token = Math.random().toString(36).slice(2)
    this.files.set(token, { token, name, content, size: content.length })
    this.send({ type: 'file', token, name, size: content.length })
  }

  ask(title, text, style, buttons) {
    const id = this.boxes.size + 1
    this.send({ type: 'box', id, title, text, style, buttons })
    return new Promise(resolve => this.boxes.set(id, resolve))
  }

  async handle(message) {
    if (message.type === 'open') {
      const page = this.pages.find(known => known.name === message.page)
      if (!page) return this.send({ type: 'error', seq: message.seq, code: 'unknown_page', text: message.page })
      if (this.page) this.send({ type: 'closed', form: this.page.name })
      for (const dialog of this.dialogs) this.send({ type: 'closed', form: dialog.name })
      this.dialogs = []
      this.page = new Form(page.name, page, false, false)
      return this.send(this.page.message())
    }
    if (message.type === 'close') {
      this.dialogs = this.dialogs.filter(dialog => dialog.name !== message.form)
      return this.send({ type: 'closed', form: message.form })
    }
    const form = this.form(message.form)
    const control = form?.controls.get(message.control)
    if (!control?.enabled || !control.visible) return this.send({ type: 'error', seq: message.seq, code: 'refused', text: message.control })
    this.ack = message.seq
    await this.act(form, control, message)
  }

  async act(form, control, message) {
    const { control: name, event } = message
    if (event === 'text') {
      control.text = message.text
    } else if (event === 'scroll') this.change(form, name, { value: message.value })
    else if (event === 'choose') {
      const members = control.kind === 'ComboBox' ? { index: message.index, text: control.rows[message.index] } : { index: message.index }
      this.change(form, name, members)
      if (form.controls.has('Text1')) this.change(form, 'Text1', { text: control.rows[message.index] })
      if (name === 'List1' && form.name === 'iplog') {
        const parts = control.rows[message.index].split(/\s+/)
        for (const [n, part] of parts.entries()) this.change(form, `F${n}`, { text: part })
      }
      if (name === 'language') this.wrote([['registry', 'HKLM\\SOFTWARE\\Mirvan\\language=' + control.rows[message.index]]])
    } else if (control.kind === 'CheckBox') {
      this.change(form, name, { value: 1 - control.value })
      this.wrote([['option', `set_option check${name}=${control.value}`], ['registry', 'HKLM\\SOFTWARE\\Mirvan\\reloadini=1']])
    } else if (control.kind === 'OptionButton') {
      for (const [key, other] of form.controls) {
        if (other.kind === 'OptionButton' && other.group === control.group) this.change(form, key, { value: key === name ? 1 : 0 })
      }
    } else await this.press(form, name)
  }

  async press(form, name) {
    if (name === 'boxes') await this.ask('Mirvan', 'The list could not be read.\nConnection refused (111)', 16, ['ok'])
    if (name === 'ask') await this.ask('Delete the entry?', 'The entry example.com will be removed from the black list.', 32, ['ok', 'cancel'])
    if (name === 'Command1') this.wrote([['registry', 'HKLM\\SOFTWARE\\Mirvan\\reloadini=1']])
    if (name === 'fail') this.wrote([['sql', "INSERT INTO blackhost VALUES ('x')"], ['sql', "DELETE FROM blacklist where entry='it's'", 'near "s": syntax error'], ['sql', 'DELETE FROM words']])
    if (name === 'many') this.wrote(Array.from({ length: 10000 }, (_, n) => ['sql', `INSERT INTO blacklist (entry) VALUES ('row${n}')`, n % 1000 === 7 ? 'database is locked' : undefined]))
    if (name === 'slow') {
      for (let n = 0; n <= 20; ++n) {
        this.send({ type: 'busy', on: true, text: n < 5 ? 'Asking name servers' : 'Importing', done: n < 5 ? 0 : n, total: n < 5 ? 0 : 20 })
        await pause(150)
      }
      this.send({ type: 'busy', on: false, text: '', done: 0, total: 0 })
    }
    if (name === 'program') {
      this.programs.start('telnet.exe 192.0.2.1 25')
      this.wrote([['program', 'telnet.exe 192.0.2.1 25']])
    }
    if (name === 'endless') this.programs.start('yes.exe', true)
    if (name === 'offer') this.offer('black list of höste.txt', 'apple.example\nbanana.example\n')
    if (name === 'modal' || name === 'transfer' || name === 'modeless') {
      const dialog = new Form('transfer', dialogs.transfer, true, name !== 'modeless')
      this.dialogs.push(dialog)
      this.send(dialog.message())
    }
    if (name === 'start') this.wrote([['component', 'export entry blacklist /var/lib/zrlconsole/download/black.txt']])
    if (name === 'refill' || name === 'refresh') {
      const list = name === 'refill' ? 'big' : 'List1'
      this.change(form, list, { rows: [`new ${Date.now()}`, ...form.controls.get(list).rows] })
    }
    if (name === 'add1' || name === 'add2') {
      const list = name === 'add1' ? 'List1' : 'List2'
      const entry = form.controls.get('Text1').text
      this.change(form, list, { rows: [...form.controls.get(list).rows, entry] })
      this.change(form, 'Text1', { text: '' })
      this.wrote([['component', `add_to_${name === 'add1' ? 'blacklist' : 'whitelist'} ${entry}`], ['registry', 'HKLM\\SOFTWARE\\Mirvan\\reloadblack=1']])
    }
    if (name === 'remove') {
      const { rows, index } = form.controls.get('List1')
      if (index < 0) return
      this.change(form, 'List1', { rows: rows.filter((_, n) => n !== index), index: -1 })
      this.wrote([['sql', `DELETE FROM blacklist where entry='${rows[index]}'`]])
    }
  }
}
