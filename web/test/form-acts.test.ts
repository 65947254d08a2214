import { beforeEach, describe, expect, it } from 'vitest'
import { FormModel, type Link } from '../src/model/form'
import { fileNameOf, productPath, systemPath } from '../src/model/product-path'
import type { Control, PlainMessage, UserEvent } from '../src/wire/protocol'

const usable = { enabled: true, visible: true }
const button = (more: Partial<Control> = {}): Control => ({ kind: 'Button', ...usable, caption: 'Add', ...more })
const list = (add: string, remove: string): Control => ({
  kind: 'ListBox',
  ...usable,
  items: { length: 3, revision: 4 },
  index: -1,
  entry: 'entry',
  add,
  remove,
})

let events: (UserEvent & { control: string })[]
let sent: PlainMessage[]
const link: Link = {
  event: (control, event) => events.push({ control: control.name, ...event }),
  send: message => sent.push(message) > 0,
  later: () => {},
}

/** Two lists; `shared` is the button that adds to both. */
function makeForm(shared = false): FormModel {
  return new FormModel(
    {
      type: 'form',
      form: 'lists',
      caption: '',
      dialog: false,
      modal: false,
      layout: {
        column: [
          { control: 'entry' },
          { frame: 'w', content: { column: [{ control: 'white' }, { control: 'addWhite' }] } },
          { frame: 'b', content: { column: [{ control: 'black' }, { control: 'addBlack' }] } },
        ],
      },
      controls: {
        entry: { kind: 'TextField', ...usable, text: '' },
        w: { kind: 'Frame', ...usable, caption: 'White' },
        b: { kind: 'Frame', ...usable, caption: 'Black' },
        white: list('addWhite', 'remove'),
        black: list(shared ? 'addWhite' : 'addBlack', 'remove'),
        addWhite: button({ needs: ['entry'] }),
        addBlack: button({ needs: ['entry'] }),
        remove: button({ caption: 'Remove', needs: ['entry'] }),
      },
    },
    link,
  )
}
const control = (form: FormModel, name: string) => form.controls.get(name)!

beforeEach(() => {
  events = []
  sent = []
})

describe('what a form knows of its lists', () => {
  it('lets Enter add only where one button adds what stands in the field', () => {
    expect(makeForm().adderOf(control(makeForm(), 'entry'))).toBeUndefined()
    const form = makeForm(true)
    expect(form.adderOf(control(form, 'entry'))?.name).toBe('addWhite')
    control(form, 'addWhite').change(0, { enabled: false })
    expect(form.adderOf(control(form, 'entry'))).toBeUndefined()
  })

  it('says what is missing, and tells buttons of one caption apart', () => {
    const form = makeForm()
    expect(form.missingFor(control(form, 'remove'))?.name).toBe('entry')
    control(form, 'entry').type(' x ')
    expect(form.missingFor(control(form, 'remove'))).toBeUndefined()
    expect(['addWhite', 'addBlack', 'remove'].map(name => form.contextOf(control(form, name)))).toEqual(['White', 'Black', ''])
  })

  it('paints what destroys, and what takes off a list, as dangerous', () => {
    const form = makeForm()
    control(form, 'addBlack').change(0, { destroys: true })
    expect(['addWhite', 'addBlack', 'remove'].map(name => form.lookOf(control(form, name)))).toEqual([' tinted', ' danger', ' danger'])
  })

  it('shows what was added, in the form in which the page has stored it', () => {
    const form = makeForm()
    control(form, 'entry').type('NEW.example ')
    control(form, 'entry').flush()
    control(form, 'addBlack').click()
    control(form, 'entry').change(9, { text: 'new.example' })
    control(form, 'black').change(9, { items: { length: 4, revision: 5 } })
    expect(sent).toEqual([])
    control(form, 'addBlack').done(events.length)
    const asked = sent.find(message => message.type === 'rows' && 'find' in message)
    expect(asked).toMatchObject({ control: 'black', find: 'new.example', order: 'added' })
    const black = control(form, 'black').list!
    const request = asked?.type === 'rows' ? asked.request : 0
    const found = { index: 3, position: 3 }
    black.accept({ type: 'rows', form: 'lists', control: 'black', request, revision: 5, filter: '', length: 4, start: 0, rows: [], found })
    expect(black.wanted.value).toEqual({ index: 3, position: 3 })
    expect(black.added.value?.index).toBe(3)
    control(form, 'black').choose(0)
    expect(black.added.value).toBeNull()
  })

  it('takes a row for chosen only if it is what the field holds', () => {
    const form = makeForm()
    const white = control(form, 'white')
    white.change(0, { index: 1 })
    expect(white.isChosen('old.example')).toBe(false)
    control(form, 'entry').change(0, { text: 'Old.example' })
    expect(white.isChosen('old.example')).toBe(true)
    white.choose(2)
    expect(white.isChosen('another line')).toBe(true)
    white.change(9, { items: { length: 2, revision: 6 } })
    expect(white.isChosen('another line')).toBe(false)
  })

  it('removes what is chosen on view, and forgets it when the list changes', () => {
    const form = makeForm()
    const { list: white } = control(form, 'white')
    white!.setView({ filter: 'a', order: 'text' })
    white!.selection.value = white!.selection.value.with(3, 1)
    control(form, 'white').removeRows(white!.selection.value.ranges)
    expect(events.at(-1)).toEqual({ control: 'white', event: 'remove', revision: 4, filter: 'a', order: 'text', ranges: [[1, 3]] })
    control(form, 'white').change(1, { items: { length: 0, revision: 5 } })
    expect(white!.selection.value.count).toBe(0)
  })
})

describe('a form that exchanges files', () => {
  const option = (value: number): Control => ({ kind: 'OptionButton', ...usable, caption: 'Option', value })
  const exchange = { path: 'path', run: 'run', exports: 'export', imports: 'import', result: 'result' }
  const formWith = (chosen: string): FormModel =>
    new FormModel(
      {
        type: 'form',
        form: 'transfer',
        caption: '',
        dialog: true,
        modal: true,
        layout: { column: [{ grid: [{ control: 'overwrite' }, { grid: [{ control: 'inner' }] }] }, { control: 'result' }] },
        controls: {
          export: option(chosen === 'export' ? 1 : 0),
          import: option(chosen === 'import' ? 1 : 0),
          delete: option(chosen === 'delete' ? 1 : 0),
          run: button({ destroys: true }),
          path: { kind: 'TextField', ...usable, text: '', path: true },
          result: { kind: 'Label', ...usable, caption: 'Added: 1' },
          overwrite: { kind: 'CheckBox', ...usable, caption: 'Overwrite', value: 0 },
          inner: { kind: 'CheckBox', ...usable, caption: 'Inner', value: 0 },
          files: { kind: 'FileList', ...usable, items: { length: 0, revision: 1 }, index: -1, exchange },
        },
      },
      link,
    )

  it('looks dangerous only while its act destroys something', () => {
    const looks = ['export', 'import', 'delete'].map(chosen => {
      const form = formWith(chosen)
      return form.lookOf(control(form, 'run'))
    })
    expect(looks).toEqual(['', '', ' danger'])
  })

  it('draws the result with the exchange, and explains settings below them', () => {
    const form = formWith('export')
    expect(form.usedLabels.has('result')).toBe(true)
    expect(['overwrite', 'inner', 'run'].map(name => form.explains(control(form, name)))).toEqual([true, true, false])
  })

  it('shows paths as its system writes them and keeps them as the console does', () => {
    expect(systemPath('\\var\\lib\\list.txt')).toBe('/var/lib/list.txt')
    expect(productPath(systemPath('\\var\\lib\\list.txt'))).toBe('\\var\\lib\\list.txt')
    expect([fileNameOf('\\a\\b.txt'), fileNameOf('/a/b.txt'), fileNameOf('b.txt'), fileNameOf('\\a\\')]).toEqual(['b.txt', 'b.txt', 'b.txt', ''])
  })
})
