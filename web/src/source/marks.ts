import { RangeSet, StateEffect, StateField, type EditorState, type Extension, type Text } from '@codemirror/state'
import { Decoration, EditorView, gutterLineClass, GutterMarker, type DecorationSet } from '@codemirror/view'
import type { Mark } from '../wire/protocol'

interface Marked {
  marks: readonly Mark[]
  /** Where each mark is in the text now, or -1. */
  places: readonly number[]
  lines: DecorationSet
  gutter: RangeSet<GutterMarker>
}

export const setMarks = StateEffect.define<readonly Mark[]>()

class MarkedLine extends GutterMarker {
  override elementClass = 'cm-marked-number'
}
const markedLine = new MarkedLine()

function placeOf(doc: Text, mark: Mark): number {
  if (mark.elsewhere || mark.line < 1) return -1
  // The text may have become shorter while the mark was on its way.
  const line = doc.line(Math.min(mark.line, doc.lines))
  return Math.min(line.from + Math.max(0, mark.column - 1), line.to)
}

/** The word at a place, or the character where there is no word. */
function wordEnd(doc: Text, place: number): number {
  const line = doc.lineAt(place)
  const word = /^\w+/.exec(line.text.slice(place - line.from))?.[0].length ?? 1
  return Math.min(place + word, line.to)
}

function drawn(doc: Text, marks: readonly Mark[], places: readonly number[]): Marked {
  const ranges = []
  const numbers = []
  for (const [index, place] of places.entries()) {
    if (place < 0) continue
    const title = marks[index]?.text ?? ''
    const line = doc.lineAt(place)
    ranges.push(Decoration.line({ class: 'cm-marked-line', attributes: { title } }).range(line.from))
    const end = wordEnd(doc, place)
    if (end > place) ranges.push(Decoration.mark({ class: 'cm-marked' }).range(place, end))
    numbers.push(markedLine.range(line.from))
  }
  return { marks, places, lines: Decoration.set(ranges, true), gutter: RangeSet.of(numbers, true) }
}

const field = StateField.define<Marked>({
  create: ({ doc }) => drawn(doc, [], []),
  update: (marked, transaction) => {
    for (const effect of transaction.effects) {
      if (!effect.is(setMarks)) continue
      const { doc } = transaction.state
      return drawn(doc, effect.value, effect.value.map(mark => placeOf(doc, mark)))
    }
    if (!transaction.docChanged) return marked
    const places = marked.places.map(place => (place < 0 ? -1 : transaction.changes.mapPos(place, 1)))
    return drawn(transaction.state.doc, marked.marks, places)
  },
  provide: self => [
    EditorView.decorations.from(self, ({ lines }) => lines),
    gutterLineClass.from(self, ({ gutter }) => gutter),
  ],
})

export const marking: Extension = field

/** Where a mark is now; -1 if it has no place in this text. */
export function markPlace(state: EditorState, index: number): number {
  return state.field(field).places[index] ?? -1
}
