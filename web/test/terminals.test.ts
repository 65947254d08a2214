import { describe, expect, it } from 'vitest'
import { Terminals } from '../src/model/terminals'
import type { TerminalAct } from '../src/wire/protocol'

const encoded = (text: string): string => btoa(text)

function start() {
  const sent: TerminalAct[] = []
  const terminals = new Terminals(message => sent.push(message) > 0)
  const drawn: string[] = []
  const finish: (() => void)[] = []
  const screen = {
    write: (bytes: Uint8Array, done: () => void) => {
      drawn.push(new TextDecoder().decode(bytes))
      finish.push(done)
    },
    reset: () => void drawn.push('(reset)'),
  }
  const begin = (id: number, fresh = true) => terminals.receive({ type: 'terminal', id, title: `program ${id}`, fresh })
  const output = (id: number, position: number, text: string) =>
    terminals.receive({ type: 'output', id, position, data: encoded(text) })
  const ids = () => terminals.open.value.map(terminal => terminal.id)
  return { sent, terminals, screen, drawn, finish, begin, output, ids }
}

describe('terminals', () => {
  it('draw what came before they were there, byte for byte, and tell how far they are', () => {
    const { sent, terminals, screen, drawn, finish, begin, output } = start()
    begin(1)
    output(1, 0, 'early')
    output(7, 0, 'of one that is gone')
    const terminal = terminals.open.value[0]!
    terminal.attach(screen)
    output(1, 5, '\u00c3\u00b6')
    output(1, 7, 'x'.repeat(40_000))
    expect(drawn.map(text => text.slice(0, 5))).toEqual(['early', 'ö', 'xxxxx'])
    // Only what has been drawn counts, and only when it is worth a message.
    expect(sent).toEqual([])
    finish[0]!()
    finish[1]!()
    expect(sent).toEqual([])
    finish[2]!()
    expect(sent).toEqual([{ type: 'taken', id: 1, position: 40_007 }])
  })

  it('send what is typed in parts, and nothing after the end', () => {
    const { sent, terminals, begin } = start()
    begin(1)
    const terminal = terminals.open.value[0]!
    terminal.type('a'.repeat(250_000))
    expect(sent.map(message => (message as { text: string }).text.length)).toEqual([100_000, 100_000, 50_000])
    terminal.resize(80, 24)
    terminal.resize(80, 24)
    terminal.resize(5000, 0)
    expect(sent.length).toBe(4)
    terminals.receive({ type: 'ended', id: 1, status: 3 })
    expect(terminal.end.value).toEqual({ status: 3 })
    terminal.type('more')
    terminal.resize(100, 30)
    expect(sent.length).toBe(4)
    begin(2)
    terminals.receive({ type: 'ended', id: 2, signal: 9 })
    expect(terminals.open.value[1]!.end.value).toEqual({ signal: 9 })
  })

  it('come back after a lost line, and those that are gone go', () => {
    const { sent, terminals, screen, drawn, begin, output, ids } = start()
    begin(1)
    begin(2)
    const terminal = terminals.open.value[1]!
    terminal.attach(screen)
    terminal.resize(100, 30)
    output(2, 0, 'before')
    terminals.wanted.value = 0
    terminals.reconnected()
    begin(2, false)
    output(2, 0, 'before')
    expect(drawn).toEqual(['before', '(reset)', 'before'])
    expect(sent.at(-1)).toEqual({ type: 'resize', id: 2, columns: 100, rows: 30 })
    begin(3, false)
    expect(terminals.wanted.value).toBe(0)
    terminals.settle()
    expect(ids()).toEqual([2, 3])
    expect(terminals.front.value).toBe(3)
    terminals.close(terminals.open.value[1]!)
    expect(sent.at(-1)).toEqual({ type: 'end', id: 3 })
    expect(terminals.front.value).toBe(2)
    terminals.receive({ type: 'gone', id: 2 })
    expect(ids()).toEqual([])
  })
})
