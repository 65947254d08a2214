import type { ComponentChildren } from 'preact'
import { useEffect, useLayoutEffect, useRef, useState } from 'preact/hooks'
import { messages } from '../i18n'
import type { ControlModel } from '../model/form'
import type { ListModel } from '../model/list'
import { coarse } from '../model/preferences'
import { visibleText } from '../model/visible-text'
import { Icon } from '../parts/icon'
import { viewText } from '../parts/text-viewer'
import { Field, nameOf, naming } from './field'
import { VirtualList, type VirtualListHandle } from './virtual-list'

export const rowHeight = (): number => (coarse.value ? 44 : 28)

const filterPause = 150
const longestTitle = 3000

interface RowProps {
  id: string
  position: number
  count: number
  text: string | undefined
  selected: boolean
  active?: boolean
  onChoose: () => void
}

export function Row({ id, position, count, text, selected, active, onChoose }: RowProps) {
  const shown = text === undefined ? '' : visibleText(text)
  return (
    <div
      id={id}
      role="option"
      class={`list-row${active ? ' active' : ''}`}
      aria-selected={selected}
      aria-setsize={count}
      aria-posinset={position + 1}
      onPointerEnter={event => {
        const inner = event.currentTarget.firstElementChild as HTMLElement | null
        if (!inner) return
        event.currentTarget.title = inner.scrollWidth > inner.clientWidth ? visibleText(text ?? '', longestTitle) : ''
      }}
      onClick={onChoose}
    >
      {text === undefined ? (
        <span class="row-waiting" />
      ) : (
        <bdi class={`row-text${text === '' ? ' row-empty' : ''}`} dir="auto">
          {text === '' ? messages.value.emptyRow : shown}
        </bdi>
      )}
    </div>
  )
}

function FilterField({ list, name, control }: { list: ListModel; name: string; control: ControlModel }) {
  const [text, setText] = useState('')
  const timer = useRef<ReturnType<typeof setTimeout> | undefined>(undefined)
  useEffect(() => () => clearTimeout(timer.current), [])
  const change = (filter: string, at = filterPause): void => {
    setText(filter)
    clearTimeout(timer.current)
    timer.current = setTimeout(() => list.setFilter(filter), at)
  }
  const m = messages.value
  return (
    <div class="filter" role="search" aria-label={m.filterList(name)}>
      <Icon name="search" />
      <input
        type="text"
        class="filter-input"
        id={`${control.id}-filter`}
        value={text}
        placeholder={m.filter}
        aria-label={m.filterList(name)}
        autocomplete="off"
        spellcheck={false}
        dir="auto"
        onInput={event => change(event.currentTarget.value)}
        onKeyDown={event => {
          if (event.key === 'Escape' && text !== '') {
            event.preventDefault()
            event.stopPropagation()
            change('', 0)
          } else if (event.key === 'ArrowDown') {
            event.preventDefault()
            document.getElementById(control.id)?.focus()
          }
        }}
      />
      {text !== '' && (
        <button type="button" class="icon-button small" aria-label={m.clearFilter} onClick={() => change('', 0)}>
          <Icon name="close" />
        </button>
      )}
    </div>
  )
}

/** Where a key moves the cursor, or undefined when it does not move it. */
export function keyTarget(key: string, from: number, count: number, page: number): number | undefined {
  const last = count - 1
  const to = (row: number): number => Math.max(0, Math.min(last, row))
  switch (key) {
    case 'ArrowDown':
      return to(from + 1)
    case 'ArrowUp':
      return to(from < 0 ? last : from - 1)
    case 'PageDown':
      return to(from + page)
    case 'PageUp':
      return to(from - page)
    case 'Home':
      return 0
    case 'End':
      return last
    default:
      return undefined
  }
}

interface ListBoxProps {
  control: ControlModel
  /** What stands below the rows, and a button in the last line. */
  bar?: ComponentChildren
  tool?: ComponentChildren
}

export function ListBox({ control, bar, tool }: ListBoxProps) {
  const shown = control.shown.value
  const list = control.list as ListModel
  void list.version.value
  const { cache } = list
  const m = messages.value
  const handle = useRef<VirtualListHandle>(null)
  const [cursor, setCursor] = useState(-1)
  const [cut, setCut] = useState(false)
  const wanted = useRef(-1)

  const index = shown.index ?? -1
  const count = cache.length
  const selected = cache.positionOf(index)
  const active = selected ?? (cursor < count ? cursor : -1)
  const selectedText = selected === undefined ? undefined : cache.row(selected)
  const name = nameOf(control, shown)

  useEffect(() => () => list.hide(), [list])
  useEffect(() => {
    if (selected !== undefined) handle.current?.reveal(selected)
  }, [index])
  useEffect(() => {
    handle.current?.toTop()
    if (selected !== undefined) handle.current?.reveal(selected)
    setCursor(-1)
    wanted.current = -1
  }, [cache.filter])
  useEffect(() => {
    // The row under the cursor has arrived: only now its place in the whole list is known.
    if (wanted.current < 0) return
    const arrived = cache.indexAt(wanted.current)
    if (arrived === undefined) return
    wanted.current = -1
    control.choose(arrived)
  })
  useLayoutEffect(() => {
    const text = selected === undefined ? null : document.getElementById(`${control.id}-r${selected}`)?.firstElementChild
    setCut(text instanceof HTMLElement && text.scrollWidth > text.clientWidth)
  }, [selected, selectedText])

  const choose = (position: number): void => {
    setCursor(position)
    const place = cache.indexAt(position)
    wanted.current = place === undefined ? position : -1
    if (place !== undefined) control.choose(place)
  }

  const onKeyDown = (event: KeyboardEvent): void => {
    if (!shown.enabled || event.altKey) return
    if (event.key === 'Enter' || event.key === ' ') {
      event.preventDefault()
      if (active >= 0) choose(active)
      return
    }
    const target = event.ctrlKey || event.metaKey ? undefined : keyTarget(event.key, active, count, handle.current?.pageSize() ?? 1)
    if (target !== undefined) {
      event.preventDefault()
      if (count === 0 || target === active) return
      choose(target)
      handle.current?.reveal(target)
    } else if (event.key.length === 1 && !event.ctrlKey && !event.metaKey) {
      // Typing in a list narrows it down: the key lands in the filter.
      document.getElementById(`${control.id}-filter`)?.focus()
    }
  }

  const counted = cache.filter === '' ? m.entries(count) : m.ofEntries(count, cache.wholeLength)
  const filterable = shown.kind !== 'DriveList'
  return (
    <Field
      control={control}
      shown={shown}
      class={`list-box kind-${shown.kind.toLowerCase()}`}
      aside={
        <span class="count" aria-live="polite">
          {counted}
        </span>
      }
    >
      <div class="list-frame" data-filtering={cache.filtering ? '' : undefined}>
        {filterable && <FilterField list={list} name={control.form.labelOf(shown)} control={control} />}
        <div class="list-view">
          <VirtualList
            handle={handle}
            count={count}
            rowHeight={rowHeight()}
            onRange={(first, last) => list.show(first, last)}
            id={control.id}
            class="list-rows"
            role="listbox"
            tabIndex={shown.enabled ? 0 : -1}
            aria-disabled={!shown.enabled}
            aria-activedescendant={active >= 0 ? `${control.id}-r${active}` : undefined}
            onKeyDown={onKeyDown}
            {...naming(control, shown)}
            row={position => (
              <Row
                key={position}
                id={`${control.id}-r${position}`}
                position={position}
                count={count}
                text={cache.row(position)}
                selected={position === active && (selected !== undefined || wanted.current === position)}
                onChoose={() => {
                  if (!shown.enabled) return
                  handle.current?.element?.focus({ preventScroll: true })
                  choose(position)
                }}
              />
            )}
          />
          {count === 0 && <p class="list-empty">{cache.filter === '' ? m.emptyList : m.noMatch}</p>}
        </div>
        {bar}
        <div class="list-foot">
          <span class="list-place">{index >= 0 && index < cache.wholeLength ? m.rowOf(index + 1, cache.wholeLength) : '\u00a0'}</span>
          {cut && selectedText !== undefined && (
            <button type="button" class="button quiet small" onClick={() => viewText(name, selectedText)}>
              {m.fullText}
            </button>
          )}
          {tool}
        </div>
      </div>
    </Field>
  )
}
