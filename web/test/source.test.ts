import { insertNewlineAndIndent } from '@codemirror/commands'
import { indentUnit } from '@codemirror/language'
import { EditorState, type Transaction } from '@codemirror/state'
import { describe, expect, it } from 'vitest'
import { marking, markPlace, setMarks } from '../src/source/marks'
import { followPlace, lineBreakOf } from '../src/source/texts'
import { vbscript } from '../src/source/vbscript'
import type { Mark } from '../src/wire/protocol'

describe('a text that is replaced', () => {
  it('keeps its line ends', () => {
    expect(['a\nb\r\n', 'a\r\nb', 'a\rb', 'one line', ''].map(lineBreakOf)).toEqual(['\n', '\r\n', '\r', '\r\n', '\r\n'])
  })

  it('keeps the cursor with what stays', () => {
    const follow = (before: string, after: string, place: number) => followPlace(before, after)(place)
    expect(follow('Sub a\nEnd Sub', 'Sub abc\nEnd Sub', 3)).toBe(3)
    expect(follow('Sub a\nEnd Sub', 'Sub abc\nEnd Sub', 8)).toBe(10)
    expect(follow('Sub a\nEnd Sub', '', 8)).toBe(0)
    expect(follow('aaaa', 'aa', 3)).toBe(2)
  })
})

describe('marks', () => {
  const mark = (line: number, column: number, elsewhere = false): Mark => ({ name: 'a', line, column, text: 't', elsewhere })
  const marked = (doc: string, ...marks: Mark[]) => {
    const state = EditorState.create({ doc, extensions: marking })
    return state.update({ effects: setMarks.of(marks) }).state
  }
  const places = (state: EditorState, count: number) => Array.from({ length: count }, (_, i) => markPlace(state, i))

  it('have a place if they are of this text, also when it has become shorter', () => {
    const state = marked('one\r\n\ud83d\ude00two', mark(2, 3), mark(2, 99), mark(9, 1), mark(0, 0), mark(1, 1, true))
    expect(places(state, 6)).toEqual([6, 9, 4, -1, -1, -1])
  })

  it('stay with their place while the text changes', () => {
    let state = marked('one\ntwo\nthree', mark(3, 2), mark(2, 1))
    state = state.update({ changes: { from: 0, insert: 'new\n' } }).state
    expect(places(state, 2)).toEqual([13, 8])
    state = state.update({ changes: { from: 0, to: state.doc.length } }).state
    expect(places(state, 2)).toEqual([0, 0])
    expect(places(state.update({ effects: setMarks.of([]) }).state, 1)).toEqual([-1])
  })
})

describe('a new line', () => {
  const after = (text: string): string => {
    let state = EditorState.create({
      doc: text,
      selection: { anchor: text.length },
      extensions: [vbscript(), indentUnit.of('\t'), EditorState.tabSize.of(4)],
    })
    insertNewlineAndIndent({ state, dispatch: (transaction: Transaction) => (state = transaction.state) })
    return state.doc.line(state.doc.lines).text
  }

  it('goes one step further in a block, and nowhere else', () => {
    const cases: [string, string][] = [
      ['', ''],
      ['x = 1', ''],
      ['Function f(x)', '\t'],
      ["  private default Property Get v ' remark", '\t  '],
      ['\tIf a Then', '\t\t'],
      ["\tif a then 'why", '\t\t'],
      ['\tIf a Then b = 1', '\t'],
      ['\tElse', '\t\t'],
      ['\tEnd If', '\t'],
      ['\tExit For', '\t'],
      ['Sub s\n\tx = 1\n\n', '\t'],
      ['Select Case x', '\t'],
      ['\tforeign = 1', '\t'],
    ]
    for (const [text, indentation] of cases) expect([text, after(text)]).toEqual([text, indentation])
  })
})
