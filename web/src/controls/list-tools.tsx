import type { ComponentChildren } from 'preact'
import { useEffect, useRef, useState } from 'preact/hooks'
import { messages } from '../i18n'
import type { ControlModel } from '../model/form'
import type { ListModel } from '../model/list'
import { recall, remember } from '../model/preferences'
import { Icon } from '../parts/icon'
import type { ListOrder } from '../wire/protocol'

const filterPause = 150

interface Props {
  list: ListModel
  name: string
  control: ControlModel
  tool?: ComponentChildren
}

const filterKey = (control: ControlModel): string => `filter ${control.form.name} ${control.name}`
const orderKey = (control: ControlModel): string => `order ${control.form.name} ${control.name}`

/** Under which name this tab remembers where a list is scrolled to; dialogs always begin at the top. */
export const placeKey = (control: ControlModel): string | undefined =>
  control.form.dialog ? undefined : `rows ${control.form.name} ${control.name}`

/** A list of a page comes back as it was left: the filter in this tab, the order for good. False if there is nothing to come back to. */
export function restoreView(control: ControlModel, list: ListModel): boolean {
  if (control.form.dialog) return false
  const order = recall(orderKey(control), 'device')
  const filter = recall(filterKey(control), 'tab') ?? ''
  if (filter === '' && order === null) return false
  list.setView({ filter, order: order === 'text' || order === 'domain' ? order : 'added' })
  return true
}

export function FilterField({ list, name, control, tool }: Props) {
  void list.version.value
  const [text, setText] = useState(list.cache.wanted.filter)
  const timer = useRef<ReturnType<typeof setTimeout> | undefined>(undefined)
  useEffect(() => () => clearTimeout(timer.current), [])
  // At once: the page may be left before the list is filtered.
  const keep = (filter: string): void => {
    if (!control.form.dialog) remember(filterKey(control), filter, 'tab')
  }
  const change = (filter: string, at = filterPause): void => {
    setText(filter)
    keep(filter)
    clearTimeout(timer.current)
    timer.current = setTimeout(() => list.setView({ filter }), at)
  }
  // A row that was looked for may have taken the filter away.
  const { filter } = list.cache.wanted
  useEffect(() => {
    setText(filter)
    keep(filter)
  }, [filter])
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
      {control.kind === 'ListBox' && <OrderChoice list={list} name={name} control={control} />}
      {tool}
    </div>
  )
}

function OrderChoice({ list, name, control }: Props) {
  void list.version.value
  const m = messages.value
  const edited = control.shown.value.entry !== undefined
  const orders: ListOrder[] = edited ? ['added', 'text', 'domain'] : ['added', 'text']
  const { order } = list.cache.wanted
  return (
    <select
      class="order-choice"
      aria-label={m.orderOf(name)}
      title={m.order}
      value={order}
      onChange={event => {
        const chosen = event.currentTarget.value as ListOrder
        if (!control.form.dialog) remember(orderKey(control), chosen === 'added' ? '' : chosen, 'device')
        list.setView({ order: chosen })
      }}
    >
      {orders.map(known => (
        <option key={known} value={known}>
          {m.orders[known === 'added' && !edited ? 'listed' : known]}
        </option>
      ))}
    </select>
  )
}
