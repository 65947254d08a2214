import type { ComponentChildren } from 'preact'
import { useEffect, useLayoutEffect, useMemo, useRef, useState } from 'preact/hooks'
import { messages } from '../i18n'
import { addressOf } from '../model/address'
import type { ControlModel } from '../model/form'
import type { ListModel } from '../model/list'
import { coarse, recall } from '../model/preferences'
import { systemPath } from '../model/product-path'
import { RowSelection } from '../model/selection'
import { viewText } from '../parts/text-viewer'
import { droppedFile, session } from '../state/app-state'
import { Field, nameOf, naming } from './field'
import { choosingByPress, keyTarget, Row } from './list-row'
import { FilterField, placeKey, restoreView } from './list-tools'
import { SelectionBar } from './selection-bar'
import { StaleNote } from './stale-note'
import { useDrop } from './upload'
import { VirtualList, type VirtualListHandle } from './virtual-list'

export const rowHeight = (): number => (coarse.value ? 44 : 28)

interface ListBoxProps {
  control: ControlModel
  /** What stands below the rows, and a button beside the filter. */
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
  const [choosing, setChoosing] = useState(false)
  const waitingFor = useRef(-1)
  /** Where a range of rows begins. */
  const anchor = useRef(-1)

  const index = shown.index ?? -1
  const count = cache.length
  const selected = cache.positionOf(index)
  const chosen = list.selection.value
  const several = chosen !== RowSelection.none || choosing
  // Several rows can be chosen where they can be removed.
  const remover = control.remover()
  const active = cursor >= 0 && cursor < count ? cursor : (selected ?? -1)
  const selectedText = selected === undefined ? undefined : cache.row(selected)
  const restored = selectedText !== undefined && !control.isChosen(selectedText)
  const added = list.added.value
  const wantedRow = list.wanted.value
  const name = nameOf(control, shown)
  const rowText = (row: string | undefined): string | undefined =>
    shown.kind === 'DriveList' && row !== undefined ? systemPath(row) : row
  // A file that is dropped here is asked about in the dialog for the list's files.
  const transferrer = control.transferrer()
  const { over, handlers } = useDrop(transferrer !== undefined && transferrer.waiting.value === 0, file => {
    droppedFile.value = file
    if (!transferrer?.click()) droppedFile.value = null
  })
  const transferring = transferrer?.waiting.value ?? 0
  useEffect(() => {
    // Where the click has opened the dialog, the dialog takes the file.
    if (transferring === 0 && session.dialogs.peek().length === 0) droppedFile.value = null
  }, [transferring])

  const place = placeKey(control)
  // What a list comes back to is no change of the view, and its place is more than the row that the page has chosen.
  const returning = useMemo(() => ({ view: restoreView(control, list), place: place !== undefined && recall(place, 'tab') !== null }), [list])
  const mounted = useRef(false)
  useEffect(() => () => list.hide(), [list])
  useEffect(() => {
    setCursor(-1)
    if (selected !== undefined && !returning.place) handle.current?.reveal(selected)
    returning.place = false
  }, [index])
  useEffect(() => {
    const returned = !mounted.current || returning.view
    if (mounted.current) returning.view = false
    mounted.current = true
    if (returned) return
    handle.current?.toTop()
    if (selected !== undefined) handle.current?.reveal(selected)
    setCursor(-1)
    waitingFor.current = -1
  }, [cache.filter, cache.order])
  useEffect(() => {
    if (!wantedRow || wantedRow.position === null || cache.filtering) return
    list.wanted.value = null
    handle.current?.reveal(wantedRow.position)
  }, [wantedRow, cache.filtering, cache.length])
  useEffect(() => {
    // The row under the cursor has arrived: only now its place in the whole list is known.
    if (waitingFor.current < 0) return
    const arrived = cache.indexAt(waitingFor.current)
    if (arrived === undefined) return
    waitingFor.current = -1
    control.choose(arrived)
  })
  useLayoutEffect(() => {
    const text = selected === undefined ? null : document.getElementById(`${control.id}-r${selected}`)?.querySelector('.row-text')
    setCut(text instanceof HTMLElement && text.scrollWidth > text.clientWidth)
  }, [selected, selectedText])

  const choose = (position: number): void => {
    setCursor(position)
    anchor.current = position
    list.selection.value = RowSelection.none
    const place = cache.indexAt(position)
    waitingFor.current = place === undefined ? position : -1
    if (place !== undefined) control.choose(place)
  }
  const select = (next: RowSelection, position: number): void => {
    setCursor(position)
    list.selection.value = next.count === 0 ? RowSelection.none : next
    handle.current?.reveal(position)
  }
  /** What a click with these keys means, as in other lists of which several rows can be chosen. */
  const onRowClick = (event: MouseEvent, position: number): void => {
    if (!shown.enabled) return
    handle.current?.element?.focus({ preventScroll: true })
    const from = anchor.current >= 0 ? anchor.current : Math.max(active, 0)
    if (!remover || !(choosing || event.ctrlKey || event.metaKey || event.shiftKey)) return choose(position)
    if (event.shiftKey) return select(RowSelection.none.with(from, position), position)
    // The row that is chosen already belongs to what is chosen with it.
    const before = chosen === RowSelection.none && !choosing && active >= 0 && !restored ? chosen.with(active, active) : chosen
    anchor.current = position
    select(before.toggled(position), position)
  }

  const onKeyDown = (event: KeyboardEvent): void => {
    if (!shown.enabled || event.altKey) return
    const held = event.ctrlKey || event.metaKey
    const move = keyTarget(event.key, active, count, handle.current?.pageSize() ?? 1)
    if (remover && onSelectionKey(event, held, move)) {
      event.preventDefault()
      event.stopPropagation()
    } else if (event.key === 'Enter' || event.key === ' ') {
      event.preventDefault()
      if (active >= 0) choose(active)
    } else if (move !== undefined && !held) {
      event.preventDefault()
      if (count === 0 || move === active) return
      choose(move)
      handle.current?.reveal(move)
    } else if (event.key.length === 1 && !held) {
      // Typing in a list narrows it down: the key lands in the filter.
      document.getElementById(`${control.id}-filter`)?.focus()
    }
  }
  /** Takes the keys that choose several rows and remove them; false for others. */
  const onSelectionKey = (event: KeyboardEvent, held: boolean, move: number | undefined): boolean => {
    if (event.key === 'Delete') {
      if (chosen.count > 0) control.removeRows(chosen.ranges)
      else if (selected !== undefined && !restored) control.removeChosen()
      return true
    }
    if (count === 0) return false
    if (move !== undefined && event.shiftKey) {
      if (anchor.current < 0) anchor.current = Math.max(active, 0)
      select(RowSelection.none.with(anchor.current, move), move)
      return true
    }
    if (held && event.key === 'a') {
      select(RowSelection.all(count), Math.max(active, 0))
      return true
    }
    if ((held || choosing) && event.key === ' ' && active >= 0) {
      anchor.current = active
      select(chosen.toggled(active), active)
      return true
    }
    if (move !== undefined && (held || choosing)) {
      setCursor(move)
      handle.current?.reveal(move)
      return true
    }
    if (event.key !== 'Escape' || !several) return false
    leaveSelection()
    return true
  }
  const leaveSelection = (): void => {
    setChoosing(false)
    list.selection.value = RowSelection.none
  }

  const counted = cache.filter === '' ? m.entries(count) : m.ofEntries(count, cache.wholeLength)
  const filterable = shown.kind !== 'DriveList'
  return (
    <Field
      control={control}
      shown={shown}
      class={`list-box kind-${shown.kind.toLowerCase()}`}
      rows={cache.wholeLength}
      aside={
        <span class="count" aria-live="polite">
          {counted}
        </span>
      }
    >
      <div class="list-frame" data-filtering={cache.filtering ? '' : undefined} data-over={over ? '' : undefined} {...handlers}>
        <StaleNote control={control} />
        {filterable && <FilterField list={list} name={control.form.labelOf(shown)} control={control} tool={tool} />}
        <div class="list-view">
          <VirtualList
            handle={handle}
            count={count}
            rowHeight={rowHeight()}
            onRange={(first, last) => list.show(first, last)}
            place={place}
            id={control.id}
            class="list-rows"
            role="listbox"
            tabIndex={shown.enabled ? 0 : -1}
            aria-disabled={!shown.enabled}
            aria-multiselectable={remover ? true : undefined}
            aria-activedescendant={active >= 0 ? `${control.id}-r${active}` : undefined}
            onKeyDown={onKeyDown}
            {...naming(control, shown)}
            row={position => (
              <Row
                key={position}
                id={`${control.id}-r${position}`}
                position={position}
                count={count}
                text={rowText(cache.row(position))}
                selected={several ? chosen.has(position) : (position === selected && !restored) || waitingFor.current === position}
                active={position === active && position !== selected}
                restored={position === selected && restored}
                added={added !== null && cache.indexAt(position) === added.index}
                ticks={several}
                choosing={choosingByPress(event => onRowClick(event, position))}
              />
            )}
          />
          {over && <p class="drop-note">{m.dropOnList(name)}</p>}
          {count === 0 && <p class="list-empty">{cache.filter !== '' ? m.noMatch : transferrer ? m.emptyListDrop : m.emptyList}</p>}
        </div>
        <p class="visually-hidden" role="status">
          {added !== null && m.addedAt(added.index + 1, cache.wholeLength)}
        </p>
        {bar}
        {several && <SelectionBar control={control} chosen={chosen} onEnd={leaveSelection} />}
        <div class="list-foot">
          <span class="list-place">{index >= 0 && index < cache.wholeLength ? m.rowOf(index + 1, cache.wholeLength) : '\u00a0'}</span>
          {cut && selectedText !== undefined && (
            <button type="button" class="button quiet small" onClick={() => viewText(name, selectedText)}>
              {m.fullText}
            </button>
          )}
          {shown.entries && selectedText !== undefined && !several && session.hello.value?.pages.some(page => page.name === 'lookup') && (
            <a class="link" href={addressOf('lookup', selectedText)}>
              {m.lookUp}
            </a>
          )}
          {remover && count > 1 && !several && (
            <button type="button" class="button quiet small" onClick={() => setChoosing(true)}>
              {m.chooseSeveral}
            </button>
          )}
        </div>
      </div>
    </Field>
  )
}
