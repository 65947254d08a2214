// Made-up programs on terminals: one echoes what is typed, one prints without end, as far ahead as the protocol lets it.
const window = 256 * 1024
const banner =
  'Trying 192.0.2.1...\r\nConnected to 192.0.2.1.\r\nEscape character is \'^]\'.\r\n' +
  '220 mx.example ESMTP\r\n\x1b[31mred \x1b[32mgreen \x1b[33myellow \x1b[1;34mblue\x1b[0m \x1b[38;2;250;120;0mtrue colour\x1b[0m \x1b[7mreverse\x1b[0m\r\n' +
  // What must do nothing: a title, the clipboard, a link.
  '\x1b]0;stolen title\x07\x1b]52;c;c3RvbGVu\x07\x1b]8;;http://198.51.100.1/\x07no link\x1b]8;;\x07\r\n'

class Program {
  constructor(id, title, send) {
    Object.assign(this, { id, title, send, history: Buffer.alloc(0), produced: 0, taken: 0, end: null, line: '' })
  }

  print(bytes) {
    const data = Buffer.from(bytes)
    this.send({ type: 'output', id: this.id, position: this.produced, data: data.toString('base64') })
    this.produced += data.length
    this.history = Buffer.concat([this.history, data]).subarray(-65536)
  }

  tell(fresh = false) {
    this.send({ type: 'terminal', id: this.id, title: this.title, fresh })
    this.produced -= this.history.length
    this.taken = this.produced
    const told = this.history
    this.history = Buffer.alloc(0)
    this.print(told)
    if (this.end) this.send({ type: 'ended', id: this.id, ...this.end })
  }

  finish(how) {
    this.end = how
    this.send({ type: 'ended', id: this.id, ...how })
  }

  type(text) {
    for (const character of text) {
      if (character === '\x03') return this.finish({ signal: 2 })
      if (character !== '\r') {
        this.line += character
        this.print(character)
      } else if (this.line === 'quit') {
        this.print('\r\n221 bye\r\nConnection closed by foreign host.\r\n')
        return this.finish({ status: 1 })
      } else {
        this.print(`\r\n250 ${this.line}\r\n`)
        this.line = ''
      }
    }
  }
}

export class MockPrograms {
  constructor(send) {
    Object.assign(this, { send, running: new Map(), last: 0 })
  }

  start(title, endless = false) {
    const program = new Program(++this.last, title, this.send)
    this.running.set(program.id, program)
    program.tell(true)
    if (!endless) return program.print(banner)
    let line = 0
    program.timer = setInterval(() => {
      if (program.end) return clearInterval(program.timer)
      let text = ''
      while (text.length < 32768) text += `line ${++line} of a program that does not stop\r\n`
      if (program.produced - program.taken + text.length <= window) program.print(text)
    }, 10)
  }

  tellAll() {
    for (const program of this.running.values()) program.tell()
  }

  receive({ type, id, text, position }) {
    if (!['input', 'resize', 'taken', 'end'].includes(type)) return false
    const program = this.running.get(id)
    if (type === 'input') program?.type(text)
    if (type === 'taken' && program) program.taken = Math.max(program.taken, position)
    if (type === 'end' && program) {
      clearInterval(program.timer)
      this.running.delete(id)
      this.send({ type: 'gone', id })
    }
    return true
  }
}
