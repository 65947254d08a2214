import { signal } from '@preact/signals'
import type { EndedMessage, OutputMessage, TerminalAct, TerminalMessage } from '../wire/protocol'

/** The host waits when this many times as much has not been drawn. */
const tellAfter = 32 * 1024
/** A pasted text is sent in parts that fit into messages, however they are encoded. */
const longestInput = 100_000
const longestSide = 1000

/** What draws a terminal. */
export interface Screen {
  write(bytes: Uint8Array, drawn: () => void): void
  reset(): void
}

export type End = { status: number } | { signal: number }

type Send = (message: TerminalAct) => boolean

function bytesOf(data: string): Uint8Array {
  const text = atob(data)
  const bytes = new Uint8Array(text.length)
  for (let n = 0; n < text.length; ++n) bytes[n] = text.charCodeAt(n)
  return bytes
}

/** A program on a terminal. Until something draws it, its output waits; the host sends only so much. */
export class TerminalModel {
  readonly id: number
  readonly title: string
  readonly end = signal<End | null>(null)
  private readonly send: Send
  private screen: Screen | null = null
  private waiting: { bytes: Uint8Array; position: number }[] = []
  private told = 0
  private size = ''

  constructor(message: TerminalMessage, send: Send) {
    this.id = message.id
    this.title = message.title
    this.send = send
  }

  attach(screen: Screen): void {
    this.screen = screen
    for (const part of this.waiting.splice(0)) this.draw(part.bytes, part.position)
  }

  detach(): void {
    this.screen = null
  }

  /** The host tells it again from the beginning of what it has kept, on a line that knows nothing of its size. */
  restart(): void {
    this.waiting = []
    this.told = 0
    this.end.value = null
    this.screen?.reset()
    const [columns, rows] = this.size.split(' ').map(Number)
    this.size = ''
    if (columns && rows) this.resize(columns, rows)
  }

  output(message: OutputMessage): void {
    const bytes = bytesOf(message.data)
    if (this.screen) this.draw(bytes, message.position)
    else this.waiting.push({ bytes, position: message.position })
  }

  ended(message: EndedMessage): void {
    this.end.value = message.signal === undefined ? { status: message.status ?? 0 } : { signal: message.signal }
  }

  type(text: string): void {
    if (this.end.peek()) return
    for (let at = 0; at < text.length; at += longestInput) {
      this.send({ type: 'input', id: this.id, text: text.slice(at, at + longestInput) })
    }
  }

  resize(columns: number, rows: number): void {
    const size = `${columns} ${rows}`
    if (size === this.size || columns < 1 || rows < 1) return
    this.size = size
    if (this.end.peek()) return
    this.send({ type: 'resize', id: this.id, columns: Math.min(columns, longestSide), rows: Math.min(rows, longestSide) })
  }

  private draw(bytes: Uint8Array, position: number): void {
    this.screen?.write(bytes, () => {
      const drawn = position + bytes.length
      if (drawn - this.told < tellAfter) return
      this.told = drawn
      this.send({ type: 'taken', id: this.id, position: drawn })
    })
  }
}

/** The programs that are shown, in the order in which they were started. */
export class Terminals {
  readonly open = signal<readonly TerminalModel[]>([])
  /** The one in front. */
  readonly front = signal<number>(0)
  /** The one that was just started and wants the keyboard. */
  readonly wanted = signal<number>(0)
  private readonly send: Send
  private untold: Set<number> | null = null

  constructor(send: Send) {
    this.send = send
  }

  receive(message: TerminalMessage | OutputMessage | EndedMessage | { type: 'gone'; id: number }): void {
    if (message.type === 'terminal') return this.started(message)
    const terminal = this.open.peek().find(known => known.id === message.id)
    if (message.type === 'output') terminal?.output(message)
    else if (message.type === 'ended') terminal?.ended(message)
    else this.drop(message.id)
  }

  close(terminal: TerminalModel): void {
    this.send({ type: 'end', id: terminal.id })
    this.drop(terminal.id)
  }

  /** On a new line the host tells of all again; what it does not tell of by the time of settle() is gone. */
  reconnected(): void {
    this.untold = new Set(this.open.peek().map(terminal => terminal.id))
  }

  settle(): void {
    for (const id of this.untold ?? []) this.drop(id)
    this.untold = null
  }

  reset(): void {
    this.untold = null
    this.open.value = []
    this.front.value = 0
    this.wanted.value = 0
  }

  private started(message: TerminalMessage): void {
    this.untold?.delete(message.id)
    const known = this.open.peek().find(terminal => terminal.id === message.id)
    if (known) return known.restart()
    this.open.value = [...this.open.peek(), new TerminalModel(message, this.send)]
    this.front.value = message.id
    if (message.fresh) this.wanted.value = message.id
  }

  private drop(id: number): void {
    const rest = this.open.peek().filter(terminal => terminal.id !== id)
    this.open.value = rest
    if (this.front.peek() === id) this.front.value = rest.at(-1)?.id ?? 0
  }
}
