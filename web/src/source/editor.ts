import { defaultKeymap, history, historyKeymap, indentLess, insertTab } from '@codemirror/commands'
import { bracketMatching, indentOnInput, indentUnit } from '@codemirror/language'
import { highlightSelectionMatches, search, searchKeymap } from '@codemirror/search'
import { Compartment, EditorSelection, EditorState } from '@codemirror/state'
import {
  EditorView,
  highlightActiveLine,
  highlightActiveLineGutter,
  highlightSpecialChars,
  keymap,
  lineNumbers,
} from '@codemirror/view'
import type { Mark } from '../wire/protocol'
import { marking, markPlace, setMarks } from './marks'
import { followPlace, lineBreakOf } from './texts'
import { theme } from './theme'
import { vbscript } from './vbscript'

interface Wording {
  name: string
  /** Read aloud with the editor: what it is for, and how to leave it. */
  description: string
  /** The library's own texts. */
  phrases: Record<string, string>
}

const descriptionId = 'description'

/** Over selected text browsers type in its style: they would add a style attribute, which the content security policy
 *  refuses and tells about. */
const typeOver = EditorView.domEventHandlers({
  beforeinput: (event, view) => {
    const { state } = view
    if (event.inputType !== 'insertText' || event.data === null || event.isComposing) return false
    if (state.selection.main.empty || state.readOnly) return false
    event.preventDefault()
    view.dispatch(state.replaceSelection(event.data), { userEvent: 'input.type', scrollIntoView: true })
    return true
  },
})

/** An editor of source text, in a shadow root: there the library's styles are sheets, which the content security policy
 *  allows. The host element passes the focus on to it. */
export class SourceEditor {
  private readonly view: EditorView
  private readonly description = document.createElement('p')
  private readonly wording = new Compartment()
  private readonly access = new Compartment()
  private readonly typed: (text: string) => void
  private marks: readonly Mark[] = []
  private shown = ''
  private lineBreak = '\r\n'
  private words: Wording = { name: '', description: '', phrases: {} }
  private enabled = true

  constructor(host: HTMLElement, typed: (text: string) => void) {
    this.typed = typed
    const root = host.shadowRoot ?? host.attachShadow({ mode: 'open', delegatesFocus: true })
    this.description.id = descriptionId
    this.description.hidden = true
    root.replaceChildren(this.description)
    this.view = new EditorView({ parent: root, root, state: this.stateOf('', 0, 0) })
  }

  /** The text that is to be shown. One that is not from this editor begins a history of its own: going back in it must
   *  not bring another script's text into this one. */
  put(text: string): void {
    if (text === this.shown) return
    const { doc, selection } = this.view.state
    const follow = followPlace(doc.toString(), text.replace(/\r\n?/g, '\n'))
    this.shown = text
    this.lineBreak = lineBreakOf(text)
    const { anchor, head } = selection.main
    this.view.setState(this.stateOf(text, follow(anchor), follow(head)))
    this.view.dispatch({ effects: [setMarks.of(this.marks), EditorView.scrollIntoView(follow(head))] })
  }

  mark(marks: readonly Mark[]): void {
    if (marks === this.marks) return
    this.marks = marks
    this.view.dispatch({ effects: setMarks.of(marks) })
  }

  word(wording: Wording): void {
    this.words = wording
    this.description.textContent = wording.description
    this.view.dispatch({ effects: this.wording.reconfigure(this.worded()) })
  }

  enable(enabled: boolean): void {
    if (enabled === this.enabled) return
    this.enabled = enabled
    this.view.dispatch({ effects: this.access.reconfigure(this.accessible()) })
  }

  /** Puts the cursor where a mark is. */
  goTo(index: number): void {
    const place = markPlace(this.view.state, index)
    if (place < 0) return
    this.view.dispatch({
      selection: EditorSelection.cursor(place),
      effects: EditorView.scrollIntoView(place, { y: 'center' }),
    })
    this.view.focus()
  }

  dispose(): void {
    this.view.destroy()
  }

  private stateOf(text: string, anchor: number, head: number): EditorState {
    return EditorState.create({
      doc: text,
      selection: { anchor, head },
      extensions: [
        lineNumbers(),
        highlightActiveLineGutter(),
        highlightActiveLine(),
        highlightSpecialChars(),
        highlightSelectionMatches(),
        history(),
        indentUnit.of('\t'),
        EditorState.tabSize.of(4),
        indentOnInput(),
        bracketMatching(),
        search({ top: true }),
        vbscript(),
        marking,
        theme,
        typeOver,
        keymap.of([{ key: 'Tab', run: insertTab, shift: indentLess }, ...searchKeymap, ...historyKeymap, ...defaultKeymap]),
        this.wording.of(this.worded()),
        this.access.of(this.accessible()),
        EditorView.updateListener.of(update => {
          if (update.docChanged) this.tell(update.state)
        }),
      ],
    })
  }

  private worded() {
    return [
      EditorState.phrases.of(this.words.phrases),
      EditorView.contentAttributes.of({ 'aria-label': this.words.name, 'aria-describedby': descriptionId }),
    ]
  }

  private accessible() {
    return [
      EditorState.readOnly.of(!this.enabled),
      EditorView.editable.of(this.enabled),
      EditorView.contentAttributes.of({ 'aria-disabled': String(!this.enabled) }),
    ]
  }

  private tell({ doc }: EditorState): void {
    this.shown = doc.sliceString(0, doc.length, this.lineBreak)
    this.typed(this.shown)
  }
}
